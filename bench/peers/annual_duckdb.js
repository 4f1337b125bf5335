// Annual values of a wide table of daily series, with DuckDB.
// usage: node annual_duckdb.js INPUT.csv CONTROL.txt END_MONTH RESULT.csv
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

// The first line; names are without commas.
function columnsOf(path) {
    const file = fs.openSync(path);
    let text = "";
    while (!text.includes("\n")) {
        const block = Buffer.alloc(65536);
        text += block.toString("utf8", 0, fs.readSync(file, block));
    }
    fs.closeSync(file);
    return text.split(/\r?\n/, 1)[0].split(",");
}

async function main() {
    const columns = columnsOf(tablePath);
    const slots = columns.slice(3); // after run, trace and time
    // Types that are not looked for make this four times as fast.
    const types = columns.map((name) =>
        `'${name}': '${name === "time" ? "TIMESTAMP" : slots.includes(name) ? "DOUBLE" : "INTEGER"}'`);
    const table = `read_csv('${tablePath}', header = true, auto_detect = false,
        columns = {${types.join(", ")}})`;
    const annual = slots.map((column) => {
        const slot = column.split(" [")[0];
        return `${formulas[methodOf.get(slot)](`"${column}"`)} AS "${slot}"`;
    });

    const connection = await (await DuckDBInstance.create()).connect();
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
