// Annual values of a wide table of daily series, with polars.
// usage: node annual_polars.js INPUT.parquet CONTROL.txt END_MONTH RESULT.csv
"use strict";
const fs = require("fs");
const pl = require("nodejs-polars");

const [tablePath, controlPath, month, resultPath] = process.argv.slice(2);
const endMonth = Number(month);

const rules = fs.readFileSync(controlPath, "utf8").trimEnd().split("\n");
const methodOf = new Map(rules.map((rule) => rule.split(": ")));

const table = pl.readParquet(tablePath);
table.columns = table.columns.map((column) => column.split(" [")[0]);
const slots = table.columns.slice(3); // after run, trace and time

// One expression for all columns of a method: each expression that is made here takes 2 ms.
const of = (method) => pl.col(slots.filter((slot) => methodOf.get(slot) === method));

// The time is the instant that ends the day.
const day = pl.col("time").cast(pl.Date).cast(pl.Int32).minus(1).cast(pl.Date);
const year = day.date.year().add(day.date.month().gt(endMonth).cast(pl.Int32));
const annual = table
    .groupBy(year.alias("year"))
    .agg(
        pl.col("time").count().alias("days"),
        of("SumNaN").sum(),
        // One missing value, and there is none.
        pl.when(of("Average").nullCount().eq(0)).then(of("Average").mean()).otherwise(pl.lit(null)),
        of("MaxNaN").max(),
        of("MinNaN").min());

const millisecondsOfDay = 24 * 3600 * 1000;
const daysOf = (year) => (Date.UTC(year, endMonth) - Date.UTC(year - 1, endMonth)) / millisecondsOfDay;
const complete = annual.getColumn("year").toArray()
    .map((year, row) => daysOf(year) === annual.getColumn("days").get(row));

annual
    .filter(pl.Series(complete))
    .drop("days")
    .unpivot("year", slots, { variableName: "slot" })
    .select("slot", "year", "value")
    .writeCSV(resultPath);
