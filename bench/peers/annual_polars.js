// Annual values of a wide table of daily series, with polars.
// usage: node annual_polars.js INPUT.csv CONTROL.txt END_MONTH RESULT.csv
"use strict";
const fs = require("fs");
const pl = require("nodejs-polars");

const [tablePath, controlPath, month, resultPath] = process.argv.slice(2);
const endMonth = Number(month);

const rules = fs.readFileSync(controlPath, "utf8").trimEnd().split("\n");
const methodOf = new Map(rules.map((rule) => rule.split(": ")));

const formulas = {
    SumNaN: (values) => values.sum(),
    // One missing value, and there is none.
    Average: (values) => pl.when(values.nullCount().eq(0)).then(values.mean()).otherwise(pl.lit(null)),
    MaxNaN: (values) => values.max(),
    MinNaN: (values) => values.min(),
};

const table = pl.readCSV(tablePath, { tryParseDates: true });
const slots = table.columns.slice(3); // after run, trace and time
const annualOf = (column) => {
    const slot = column.split(" [")[0];
    return formulas[methodOf.get(slot)](pl.col(column)).alias(slot);
};

// The time is the instant that ends the day.
const day = pl.col("time").cast(pl.Date).cast(pl.Int32).minus(1).cast(pl.Date);
const year = day.date.year().add(day.date.month().gt(endMonth).cast(pl.Int32));
const annual = table
    .groupBy(year.alias("year"))
    .agg(pl.col("time").count().alias("days"), ...slots.map(annualOf));

const millisecondsOfDay = 24 * 3600 * 1000;
const daysOf = (year) => (Date.UTC(year, endMonth) - Date.UTC(year - 1, endMonth)) / millisecondsOfDay;
const complete = annual.getColumn("year").toArray()
    .map((year, row) => daysOf(year) === annual.getColumn("days").get(row));

annual
    .filter(pl.Series(complete))
    .drop("days")
    .unpivot("year", slots.map((column) => column.split(" [")[0]), { variableName: "slot" })
    .select("slot", "year", "value")
    .writeCSV(resultPath);
