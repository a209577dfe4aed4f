"use strict";
// What the page holds: tables, each with its rows read when they are first needed, and ways to choose and order them.

const manifest = JSON.parse(document.getElementById("manifest").textContent);

// A value as it is shown. Amounts have two decimals at least; whatever is not known is nothing.
function shown(value, column) {
    if (value === null || value === undefined) return "";
    if (column.kind === "money") return amountText(value);
    return String(value);
}

function amountText(value) {
    const text = String(value);
    if (!/^-?\d+(\.\d+)?$/.test(text)) return text;
    const [whole, decimals = ""] = text.split(".");
    if (decimals.length > 4) return Number(text).toFixed(4).replace(/0{1,2}$/, "");
    return whole + "." + decimals.padEnd(2, "0");
}

function isEmpty(value) {
    return value === null || value === undefined || value === "";
}

// As a person orders names: without regard to case and accents, numbers by their size. Keys that are made once are
// faster than a comparison by the rules of a language.
function inOrder(texts) {
    const keyed = texts.map((text) => ({ text, key: orderKey(String(text)) }));
    keyed.sort((a, b) => {
        if (a.key === b.key) return a.text < b.text ? -1 : 1;
        return a.key < b.key ? -1 : 1;
    });
    return keyed.map((one) => one.text);
}

function orderKey(text) {
    let key = text.slice(0, 400).toLowerCase();
    if (/[^ -~]/.test(key)) key = key.normalize("NFD").replace(/\p{M}/gu, "");
    return key.replace(/\d+/g, (digits) => digits.padStart(12, "0"));
}

class Table {
    constructor(about) {
        this.name = about.name;
        this.title = about.title;
        this.file = about.file;
        this.count = about.rows;
        this.columns = about.columns;
        this.key = about.key;
        this.label = about.label;
        this.known = about.known;
        this.blocks = [];
        this.haystacks = null;
        this.positions = new Map();
    }

    column(name) {
        return this.columns.findIndex((column) => column.name === name);
    }

    // Arrays of values; nulls at the end are left out.
    get rows() {
        if (this.blocks !== null) {
            this.read = [];
            for (const block of this.blocks) {
                for (const row of JSON.parse(block.textContent)) this.read.push(row);
                block.remove();
            }
            this.blocks = null;
        }
        return this.read;
    }

    // What a record is called.
    labelOf(row) {
        return this.label.map((i) => shown(row[i], this.columns[i])).filter((text) => text !== "").join(" ");
    }

    // Texts to search in, one for each row, in lower case.
    get texts() {
        if (this.haystacks === null) {
            this.haystacks = this.rows.map((row) => {
                let text = "";
                for (let i = 0; i < row.length; ++i) {
                    if (row[i] !== null) text += shown(row[i], this.columns[i]) + "\n";
                }
                return text.toLowerCase();
            });
        }
        return this.haystacks;
    }

    // Numbers of the rows that hold the text and pass the filter.
    matching(text, filter) {
        const wanted = text.toLowerCase();
        const rows = this.rows;
        const texts = wanted === "" ? null : this.texts;
        const numbers = [];
        for (let i = 0; i < rows.length; ++i) {
            if (filter !== null && rows[i][filter.column] !== filter.value) continue;
            if (texts === null || texts[i].includes(wanted)) numbers.push(i);
        }
        return numbers;
    }

    // Row numbers by the value of a column.
    byValue(column) {
        let positions = this.positions.get(column);
        if (positions === undefined) {
            positions = new Map();
            this.rows.forEach((row, number) => {
                const found = positions.get(row[column]);
                if (found === undefined) positions.set(row[column], [number]);
                else found.push(number);
            });
            this.positions.set(column, positions);
        }
        return positions;
    }

    // Places of all rows in the order of a column, found once; rows of one value have one place.
    places(column) {
        const kind = this.columns[column].kind;
        let values = [...new Set(this.rows.map((row) => row[column] ?? null))].filter((value) => !isEmpty(value));
        if (kind === "number" || kind === "money") values.sort((a, b) => Number(a) - Number(b));
        else if (kind === "date") values.sort();
        else values = inOrder(values);
        const places = new Map(values.map((value, place) => [value, place]));
        return Float64Array.from(this.rows, (row) => places.get(row[column]) ?? Infinity);
    }

    // Orders row numbers in place. Rows without a value come last in both directions.
    sort(numbers, column, descending) {
        this.orders ??= new Map();
        if (!this.orders.has(column)) this.orders.set(column, this.places(column));
        const places = this.orders.get(column);
        const sign = descending ? -1 : 1;
        numbers.sort((a, b) => {
            if (places[a] === places[b]) return a - b;
            if (places[a] === Infinity || places[b] === Infinity) return places[a] - places[b];
            return sign * (places[a] - places[b]);
        });
    }

    // Columns that have a value in some row.
    get usedColumns() {
        if (this.used === undefined) {
            const isUsed = this.columns.map(() => false);
            for (const row of this.rows) {
                for (let i = 0; i < row.length; ++i) {
                    if (!isUsed[i] && !isEmpty(row[i])) isUsed[i] = true;
                }
            }
            this.used = isUsed;
        }
        return this.used;
    }
}

const tables = manifest.tables.map((about) => new Table(about));
for (const block of document.querySelectorAll("script[data-table]")) {
    tables[Number(block.dataset.table)].blocks.push(block);
}

function tableCalled(name) {
    return tables.find((table) => table.name === name);
}

function counted(count, word) {
    return count.toLocaleString("en") + " " + word + (count === 1 ? "" : "s");
}

// An element with its text, which is never taken for markup.
function element(name, text, properties) {
    const made = document.createElement(name);
    if (text !== undefined) made.textContent = text;
    return Object.assign(made, properties);
}
