// Makes a Parquet file, as polars and DuckDB read it, of a wide table of daily series.
// usage: node wide_to_parquet.js INPUT.csv OUTPUT.parquet
"use strict";
const { DuckDBInstance } = require("@duckdb/node-api");

async function main() {
    const [tablePath, parquetPath] = process.argv.slice(2);
    const connection = await (await DuckDBInstance.create()).connect();
    await connection.run(`COPY (FROM read_csv('${tablePath}', header = true, sample_size = -1))
        TO '${parquetPath}' (FORMAT parquet)`);
}

main();
