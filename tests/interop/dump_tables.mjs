// Prints what mdb-reader reads from a file, one JSON array of strings and nulls per line:
//   ["password", TEXT or null]
//   ["table", NAME, "user" or "system", ROW COUNT]     then, for this table,
//   ["column", NAME, TYPE, SIZE, "autonumber" or ""]   one for each column
//   ["row", VALUE...]                                  one for each row
//   ["refused", MESSAGE]                               when the reader does not read the table
// Dates are milliseconds since 1970-01-01, bytes are hex digits.
//
// usage: node dump_tables.mjs READER_FOLDER FILE
import { readFileSync, writeSync } from "node:fs";
import { createRequire } from "node:module";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [readerFolder, file] = process.argv.slice(2);
const require = createRequire(resolve(readerFolder, "package.json"));
const { default: MDBReader } = await import(pathToFileURL(require.resolve("mdb-reader")));

const kFlushCharacters = 1 << 20;
let pending = "";

function flush() {
    const bytes = Buffer.from(pending, "utf8");
    pending = "";
    for (let at = 0; at < bytes.length; ) {
        at += writeSync(1, bytes, at);
    }
}

function print(...items) {
    pending += JSON.stringify(items) + "\n";
    if (pending.length > kFlushCharacters) flush();
}

function text(value) {
    if (value === null || value === undefined) return null;
    if (value instanceof Date) return String(value.getTime());
    if (Buffer.isBuffer(value)) return value.toString("hex");
    if (Object.is(value, -0)) return "-0";
    return String(value);
}

function printTable(table, kind) {
    print("table", table.name, kind, String(table.rowCount));
    try {
        const columns = table.getColumns();
        for (const column of columns) {
            print("column", column.name, column.type, String(column.size), column.autoLong ? "autonumber" : "");
        }
        for (const row of table.getData()) {
            print("row", ...columns.map((column) => text(row[column.name])));
        }
    } catch (error) {
        print("refused", error.message);
    }
}

const reader = new MDBReader(readFileSync(file));
print("password", reader.getPassword());
for (const kind of ["user", "system"]) {
    const names = reader.getTableNames({ normalTables: kind === "user", systemTables: kind === "system" });
    for (const name of names) {
        printTable(reader.getTable(name), kind);
    }
}
flush();
