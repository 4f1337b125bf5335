// Annual values of a wide table of daily series, with DuckDB.
// usage: node annual_duckdb.js INPUT.parquet CONTROL.txt END_MONTH RESULT.csv
"use strict";
const fs = require("fs");
const { DuckDBInstance } = require("@duckdb/node-api");

const [tablePath, controlPath, endMonth, resultPath] = process.argv.slice(2);

const rules = fs.readFileSync(controlPath, "utf8").trimEnd().split("\n");
const methodOf = new Map(rules.map((rule) => rule.split(": ")));

const formulas = {
    SumNaN: (values) => `coalesce(sum(${values}), 0)`,
    // One missing value, and there is none.
    Average: (values) => `CASE WHEN count(${values}) = count(*) THEN avg(${values}) END`,
    MaxNaN: (values) => `max(${values})`,
    MinNaN: (values) => `min(${values})`,
};

async function main() {
    const connection = await (await DuckDBInstance.create()).connect();
    const table = `read_parquet('${tablePath}')`;
    const columns = (await connection.runAndReadAll(`DESCRIBE FROM ${table}`)).getColumns()[0];
    const annual = columns.slice(3).map((column) => { // after run, trace and time
        const slot = column.split(" [")[0];
        return `${formulas[methodOf.get(slot)](`"${column}"`)} AS "${slot}"`;
    });

    // The time is the instant that ends the day.
    await connection.run(`
        COPY (
            WITH daily AS (
                SELECT *, time::DATE - 1 AS day,
                    year(day) + (month(day) > ${endMonth})::INTEGER AS year
                FROM ${table}),
            annual AS (
                SELECT year, count(*) AS days, ${annual.join(", ")}
                FROM daily GROUP BY year),
            complete AS (
                SELECT * EXCLUDE days FROM annual
                WHERE days = last_day(make_date(year, ${endMonth}, 1))
                    - last_day(make_date(year - 1, ${endMonth}, 1)))
            SELECT slot, year, value
            FROM complete UNPIVOT INCLUDE NULLS (value FOR slot IN (COLUMNS(* EXCLUDE year)))
        ) TO '${resultPath}' (HEADER)`);
}

main();
