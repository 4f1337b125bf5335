// Makes a Parquet file of a table of htstool export, with DuckDB, and prints what an SQL query says of it.
// usage: node parquet.js TABLE.csv OUT.parquet
// Needs npm's @duckdb/node-api: npm install @duckdb/node-api
"use strict";
const { DuckDBInstance } = require("@duckdb/node-api");

const [table, parquet] = process.argv.slice(2).map((path) => `'${path.replaceAll("'", "''")}'`);

const query = `
    SELECT object, slot, units, count(value) AS present, count(*) - count(value) AS missing,
        avg(value) AS mean
    FROM ${parquet} WHERE time IS NOT NULL
    GROUP BY run, object, slot, units ORDER BY run, object, slot`;

async function main() {
    const connection = await (await DuckDBInstance.create()).connect();
    // Types are given: a column of names must not become one of numbers.
    await connection.run(`
        COPY (SELECT * FROM read_csv(${table}, header = true, delim = ',', quote = '"', escape = '"',
            types = {'run': 'INTEGER', 'trace': 'INTEGER', 'object': 'VARCHAR', 'slot': 'VARCHAR',
                'units': 'VARCHAR', 'time': 'TIMESTAMP', 'value': 'DOUBLE'}))
        TO ${parquet} (FORMAT parquet)`);
    for (const row of (await connection.runAndReadAll(query)).getRows())
        console.log(row.join("\t"));
}

main().catch((error) => {
    console.error(error.message);
    process.exit(1);
});
