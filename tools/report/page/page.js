// The page: which table is shown, what is searched for, in which order; the address keeps it.

const page = {
    table: null,
    text: "",
    filter: null,  // { column, value }
    sorted: null,  // { column, descending }
    hasAllColumns: false,
};

const search = document.getElementById("search");
const section = document.getElementById("tables");
const grid = new Grid((place) => record.show(place), sortBy);
const record = new RecordView(grid, (table, column, value) => {
    if (search.value !== "") searchFor("");
    location.hash = addressOf(table, { column, value });
    heading().focus();
});

function heading() {
    return document.getElementById("table-heading");
}

function say(text) {
    document.getElementById("status").textContent = text;
}

// "#t=Songs&c=ProjID&v=1"
function addressOf(table, filter) {
    const words = new URLSearchParams({ t: table.name });
    if (filter !== null) {
        words.set("c", table.columns[filter.column].name);
        words.set("v", JSON.stringify(filter.value));
    }
    return "#" + words;
}

function fromAddress() {
    const words = new URLSearchParams(location.hash.slice(1));
    const table = tableCalled(words.get("t"));
    if (table === undefined) return null;
    const column = table.column(words.get("c"));
    let filter = null;
    try {
        if (column >= 0) filter = { column, value: JSON.parse(words.get("v")) };
    } catch {
        // An address that somebody has cut; the whole table is shown.
    }
    return { table, filter };
}

function showTable(table, filter) {
    if (page.table !== table) page.sorted = null;
    page.table = table;
    page.filter = filter;
    heading().textContent = table.title;
    for (const link of document.querySelectorAll("#table-list a")) {
        const isShown = link.dataset.name === table.name;
        if (isShown) link.setAttribute("aria-current", "true");
        else link.removeAttribute("aria-current");
        if (isShown) keepInView(link);
    }
    showColumns();
    showRows();
}

// In its list, without moving the page.
function keepInView(link) {
    const list = link.closest("nav");
    const place = link.getBoundingClientRect();
    const room = list.getBoundingClientRect();
    if (place.top < room.top || place.bottom > room.bottom) list.scrollTop += place.top - room.top - 60;
    if (place.left < room.left || place.right > room.right) list.scrollLeft += place.left - room.left - 20;
}

function showColumns() {
    const used = page.table.usedColumns;
    const all = page.table.columns.map((_, i) => i);
    const empty = page.table.rows.length === 0 ? 0 : used.filter((isUsed) => !isUsed).length;
    document.getElementById("empty-columns-label").hidden = empty === 0;
    document.getElementById("empty-columns-text").textContent = "Show " + counted(empty, "empty column");
    grid.show(page.table, page.hasAllColumns || empty === 0 ? all : all.filter((i) => used[i]), page.sorted);
}

function showRows() {
    const table = page.table;
    const numbers = table.matching(page.text, page.filter);
    if (page.sorted !== null) table.sort(numbers, page.sorted.column, page.sorted.descending);
    const isAll = numbers.length === table.rows.length;
    const count = isAll ? counted(numbers.length, "row")
        : numbers.length.toLocaleString("en") + " of " + counted(table.rows.length, "row");
    document.getElementById("table-facts").textContent = count + ", " + table.name + " in " + table.file;
    const line = document.getElementById("filter");
    line.hidden = page.filter === null;
    if (page.filter !== null) {
        const column = table.columns[page.filter.column];
        document.getElementById("filter-text").textContent = column.name + " = " + shown(page.filter.value, column);
    }
    const why = table.rows.length === 0 ? "This table has no rows." : "No row of this table has that.";
    grid.showRows(numbers, why);
    say(table.title + ": " + count);
}

function sortBy(column) {
    const sorted = page.sorted;
    if (sorted === null || sorted.column !== column) page.sorted = { column, descending: false };
    else if (!sorted.descending) page.sorted = { column, descending: true };
    else page.sorted = null;
    const left = grid.box.scrollLeft;
    grid.drawHead(page.sorted);
    showRows();
    grid.box.scrollLeft = left;
    grid.head.querySelectorAll("button")[grid.columns.indexOf(column)].focus({ preventScroll: true });
    const name = page.table.columns[column].name;
    say(page.sorted === null ? "In the order of the file"
        : "Sorted by " + name + (page.sorted.descending ? ", descending" : ", ascending"));
}

// What the shown table has of it, then how many rows of each table do, some tables at a time.
const MOST_MILLISECONDS_AT_ONCE = 16;
let searchRound = 0;
function searchFor(text) {
    search.value = text;
    page.text = text;
    const round = ++searchRound;
    showRows();
    const list = document.getElementById("table-list");
    list.setAttribute("aria-busy", "true");
    const links = [...list.querySelectorAll("a")];
    links.sort((a, b) => (b.dataset.name === page.table.name) - (a.dataset.name === page.table.name));
    const countSome = () => {
        if (round !== searchRound) return;
        const end = performance.now() + MOST_MILLISECONDS_AT_ONCE;
        while (links.length > 0 && performance.now() < end) countIn(links.shift(), text);
        if (links.length > 0) setTimeout(countSome);
        else list.removeAttribute("aria-busy");
    };
    countSome();
}

function countIn(link, text) {
    const table = tableCalled(link.dataset.name);
    const found = text === "" ? table.count : table.matching(text, null).length;
    link.querySelector("span").textContent = found.toLocaleString("en");
    link.classList.toggle("none", found === 0);
}

function listTables() {
    const list = document.getElementById("table-list");
    const add = (table) => {
        const link = element("a", table.title, { href: addressOf(table, null) });
        link.dataset.name = table.name;
        link.classList.toggle("none", table.count === 0);
        link.append(element("span", table.count.toLocaleString("en")));
        const item = element("li");
        item.append(link);
        list.append(item);
    };
    const known = tables.filter((table) => table.known);
    known.forEach(add);
    const others = tables.filter((table) => !table.known);
    if (known.length > 0 && others.length > 0) list.append(element("li", "Lists and settings", { className: "apart" }));
    others.forEach(add);
}

function followAddress() {
    const wanted = fromAddress();
    if (wanted === null) return;
    const isFromAbove = document.getElementById("glance")?.contains(document.activeElement) === true;
    if (search.value !== "" && isFromAbove) searchFor("");
    showTable(wanted.table, wanted.filter);
    const place = section.getBoundingClientRect();
    if (place.top > window.innerHeight / 2 || place.bottom < 0 || isFromAbove) section.scrollIntoView();
    if (isFromAbove) heading().focus({ preventScroll: true });
}

function start() {
    if (tables.length === 0) return;
    document.getElementById("browser").hidden = false;
    listTables();
    let waiting = 0;
    search.addEventListener("input", () => {
        clearTimeout(waiting);
        waiting = setTimeout(() => searchFor(search.value), 120);
    });
    document.getElementById("filter-off").addEventListener("click", () => {
        location.hash = addressOf(page.table, null);
        heading().focus();
    });
    document.getElementById("empty-columns").addEventListener("change", (event) => {
        page.hasAllColumns = event.target.checked;
        showColumns();
        showRows();
    });
    window.addEventListener("hashchange", followAddress);
    const wanted = fromAddress();
    if (wanted === null) showTable(tables.find((table) => table.known && table.count > 0) ?? tables[0], null);
    else followAddress();
}

start();
