// Looks at a report's page in a browser as a person does. Exit code 1 and a line for each thing that is wrong; 77 when
// there is no browser.
//
// usage: check_report.mjs STUDY PAGE.html ROWS.json     STUDY: studio, hostile, volume or plain
//
// ROWS.json is what `kvdb tables --json` prints of the same files. With KVDB_SCREENSHOTS in the environment, pictures
// of the page go into that folder.
import { readFileSync, writeFileSync } from "node:fs";
import { Browser } from "./browser.mjs";

const SKIP = 77;
const [study, file, rowsFile] = process.argv.slice(2);
const wanted = JSON.parse(readFileSync(rowsFile, "utf8"));
let failures = 0;

function expect(what, got, want) {
    if (JSON.stringify(got) === JSON.stringify(want)) return;
    ++failures;
    console.log(`${what}: ${JSON.stringify(got)}, not ${JSON.stringify(want)}`);
}

function expectBelow(what, got, most) {
    console.log(`${what}: ${Math.round(got)} ms`);
    if (!(got < most)) expect(what + " takes too long", got, most);
}

// In the page: waits for what the next frame shows.
const HELPERS = `
    window.kvdbFrame = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    window.kvdbCells = (column) => [...document.querySelectorAll("#rows tbody tr[data-place]")].map((row) =>
        row.children[kvdbColumn(column)].innerText);
    window.kvdbColumn = (name) => [...document.querySelectorAll("#rows thead th")]
        .findIndex((th) => th.innerText === name);
    window.kvdbOpen = async (name) => { location.hash = "#t=" + encodeURIComponent(name);
        await new Promise((done) => setTimeout(done, 30)); await kvdbFrame(); };
    window.kvdbSort = async (column) => { [...document.querySelectorAll("#rows thead button")]
        .find((b) => b.innerText === column).click(); await kvdbFrame(); };
    window.kvdbSearch = async (text) => { const field = document.getElementById("search"); field.value = text;
        field.dispatchEvent(new Event("input")); await new Promise((done) => setTimeout(done, 200));
        while (document.getElementById("table-list").ariaBusy) await kvdbFrame(); await kvdbFrame(); };
    window.kvdbFacts = () => document.getElementById("table-facts").innerText;`;

async function opened(browser, options) {
    const page = await browser.open(file, options);
    if (options?.script !== false) await page.value(HELPERS);
    return page;
}

// What holds for every page: the numbers are the studio's, and the console has nothing to say.
async function checkCounts(page) {
    const counts = await page.value("tables.map((t) => [t.count, t.rows.length])");
    expect("rows of each table", counts, wanted.map((t) => [t.Rows, t.Rows]));
    const listed = await page.value(`[...document.querySelectorAll("#table-list a span")]
        .map((span) => Number(span.innerText.replaceAll(",", ""))).sort((a, b) => a - b)`);
    expect("numbers in the list", listed, wanted.map((t) => t.Rows).sort((a, b) => a - b));
}

async function checkQuiet(page, what) {
    expect("complaints of the browser, " + what, page.complaints, []);
}

// At two sizes, light and dark: nothing sticks out.
async function checkLooks(browser) {
    const folder = process.env.KVDB_SCREENSHOTS;
    const colours = new Set();
    for (const [width, height] of [[1280, 900], [390, 844]]) {
        for (const scheme of ["light", "dark"]) {
            const page = await opened(browser, { width, height, scheme });
            const what = `${width} ${scheme}`;
            expect("width of the page, " + what, await page.value("document.documentElement.scrollWidth <= innerWidth"),
                true);
            colours.add(await page.value("getComputedStyle(document.body).backgroundColor"));
            if (folder) writeFileSync(`${folder}/${study}-${width}-${scheme}.png`, await page.screenshot(true));
            await checkQuiet(page, what);
            await page.close();
        }
    }
    expect("grounds", colours.size, 2);
}

async function checkPictures(page) {
    expect("cards", await page.value(`[...document.querySelectorAll(".card h3")].map((h) => h.innerText)`),
        ["Bookings of each room", "Invoices and what is unpaid", "Projects by year", "Gear and its repairs",
            "Stock levels"]);
    const spoken = await page.value(`[...document.querySelectorAll('svg[role="img"]')].map((svg) =>
        svg.getAttribute("aria-labelledby").split(" ").every((id) => document.getElementById(id).textContent !== "")
        && svg.parentElement.querySelectorAll("details.numbers tbody tr").length > 0)`);
    expect("pictures with title, description and numbers", spoken, [true, true, true, true, true]);
    expect("key figures", await page.value(`[...document.querySelectorAll(".figures li")].map((li) => li.innerText)`),
        ["3\\nProjects", "3\\nContacts", "1\\nSessions", "2\\nBookings", "1\\nGear", "1\\nInvoices", "730.56\\nUnpaid"]
            .map((text) => text.replace("\\n", "\n")));
    expect("invoices by month", await page.value(`[...document.querySelectorAll("#invoices tbody tr")]
        .map((row) => [...row.children].map((cell) => cell.textContent))`), [["2026-03", "1", "930.56", "730.56"]]);
    expect("weeks", await page.value(`[...document.querySelectorAll("#bookings tbody tr")]
        .map((row) => [...row.children].map((cell) => cell.textContent))`),
    [["2026-W11", "Studio A", "1", "4.50"], ["2026-W14", "Studio A", "1", "2.75"]]);
}

async function checkSorting(page) {
    await page.value(`kvdbOpen("Projects")`);
    const names = ["Night Trains", "Harbour Jingle (long cut)", "Grüße aus Köln"];
    expect("order of the file", await page.value(`kvdbCells("Name")`), names);
    const states = [];
    for (let i = 0; i < 3; ++i) {
        await page.value(`kvdbSort("Name")`);
        states.push([await page.value(`kvdbCells("Name")[0]`), await page.value(
            `document.querySelector("#rows thead th[aria-sort]")?.getAttribute("aria-sort") ?? "none"`)]);
    }
    expect("three clicks on a heading", states,
        [["Grüße aus Köln", "ascending"], ["Night Trains", "descending"], ["Night Trains", "none"]]);
    await page.value(`kvdbSort("DiscountVal")`);
    expect("amounts in order", await page.value(`kvdbCells("DiscountVal")`), ["3.00", "7.25", "12.50"]);
    expect("focus stays on the heading", await page.value("document.activeElement.innerText"), "DiscountVal");
    await page.key("Enter");
    await page.value("kvdbFrame()");
    expect("sorted by the keyboard", await page.value(`kvdbCells("DiscountVal")`), ["12.50", "7.25", "3.00"]);
}

async function checkSearching(page) {
    await page.value(`kvdbOpen("Tracks")`);
    await page.value(`kvdbSearch("LINDSTRÖM")`);
    expect("found rows", await page.value(`[kvdbFacts(), ...kvdbCells("Name")]`),
        ["1 of 2 rows, Tracks in sldb.mdb", "Lead"]);
    const hits = await page.value(`[...document.querySelectorAll("#table-list a")].filter((a) =>
        a.querySelector("span").innerText !== "0").map((a) => a.dataset.name).sort()`);
    expect("tables with hits", hits, ["Clients", "Projects", "Tracks"]);
    await page.value(`kvdbSearch("")`);
    expect("all rows again", await page.value("kvdbFacts()"), "2 rows, Tracks in sldb.mdb");
}

async function checkRecord(page) {
    await page.value(`kvdbOpen("Songs")`);
    await page.value(`document.querySelector("#rows tbody button").focus()`);
    await page.key("ArrowDown");
    await page.key("Enter");
    const heading = `document.getElementById("record-heading").innerText`;
    expect("record", await page.value(heading), "Songs: Platform 9");
    expect("dialog", await page.value(`document.getElementById("record").matches(":modal")`), true);
    await page.value(`document.getElementById("record-before").click()`);
    expect("record before", await page.value(heading), "Songs: Last Departure");
    expect("parent", await page.value(`document.querySelector("#record .parent").innerText`), "Night Trains");
    expect("children", await page.value(`[...document.querySelectorAll("#record .links button")]
        .map((button) => button.innerText)`),
        ["Tracks (SongID): 2", "Sessions (SongID): 1", "Mixes (SongID): 1"]);
    await page.key("Escape");
    await page.value("kvdbFrame()");
    expect("closed", await page.value(`document.getElementById("record").open`), false);
    expect("focus is back on the row", await page.value("document.activeElement.innerText"), "1");
    await page.value(`document.querySelector("#rows tbody button").click()`);
    await page.value(`document.querySelector("#record .links button").click()`);
    await page.value("new Promise((done) => setTimeout(done, 50)).then(kvdbFrame)");
    expect("rows that belong to it", await page.value(`[kvdbFacts(), ...kvdbCells("Name")]`),
        ["2 rows, Tracks in sldb.mdb", "Strings", "Lead"]);
}

async function checkReading(page) {
    const marks = await page.value(`["header", "main", "nav[aria-label]", "footer", "[role=search]", "[role=status]"]
        .filter((name) => document.querySelector(name) === null)`);
    expect("missing landmarks", marks, []);
    expect("headings", await page.value(`[...document.querySelectorAll("h1, h2")].filter((h) => !h.closest("dialog"))
        .map((h) => h.innerText || h.textContent)`), ["Harbour Sound", "At a glance", "All tables"]);
    await page.value(`kvdbOpen("Tracks")`);
    expect("table's semantics", await page.value(`[document.getElementById("rows").getAttribute("aria-rowcount"),
        document.querySelector("#rows tbody tr[data-place]").getAttribute("aria-rowindex"),
        document.querySelectorAll("#rows thead th[scope=col]").length === Number(
            document.getElementById("rows").getAttribute("aria-colcount")),
        document.querySelectorAll("#rows tbody th[scope=row]").length]`), ["3", "2", true, 2]);
    // What a screen reader is given: names for all that can be pressed.
    const { nodes } = await page.send("Accessibility.getFullAXTree");
    const nameless = nodes.filter((node) => !node.ignored && ["button", "link", "searchbox", "checkbox", "image"]
        .includes(node.role?.value) && !node.name?.value);
    expect("controls without a name", nameless.map((node) => node.role.value), []);
    expect("told", await page.value(`document.getElementById("status").innerText`), "Tracks: 2 rows");
}

async function checkWithoutScript(browser) {
    const page = await opened(browser, { script: false });
    const { root } = await page.send("DOM.getDocument", { depth: -1 });
    const { nodeIds } = await page.send("DOM.querySelectorAll", { nodeId: root.nodeId, selector: "noscript tbody tr" });
    expect("tables without a script", nodeIds.length, wanted.length);
    await checkQuiet(page, "without a script");
    await page.close();
}

async function checkStudio(browser) {
    const page = await opened(browser);
    await checkCounts(page);
    await checkPictures(page);
    await checkSorting(page);
    await checkSearching(page);
    await checkRecord(page);
    await checkReading(page);
    await checkQuiet(page, "at the end");
    await page.close();
    await checkWithoutScript(browser);
}

// Texts full of markup are texts, wherever they stand.
async function checkHostile(browser) {
    const page = await opened(browser);
    await checkCounts(page);
    expect("elements from texts",
        await page.value(`document.querySelectorAll("img, b, iframe, object, a[href^=java]").length`), 0);
    expect("scripts", await page.value(`document.querySelectorAll("script:not([type])").length`), 1);
    expect("nothing has run", await page.value("typeof window.pwned"), "undefined");
    const hostile = await page.value(`tableCalled("Def_Invoice").rows[0][0]`);
    expect("a text that is hostile", hostile.startsWith("</script><script>"), true);
    expect("heading", await page.value(`document.querySelector("h1").textContent`), hostile);
    await page.value(`kvdbOpen("Projects")`);
    const last = await page.value("tableCalled('Projects').rows.length - 1");
    await page.value(`record.show(${last})`);
    const fields = await page.value(`Object.fromEntries([...document.querySelectorAll("#record dl > div")]
        .map((pair) => [pair.children[0].textContent, pair.children[1].textContent]))`);
    const memo = await page.value(`tableCalled("Projects").rows[${last}][tableCalled("Projects").column("Notes")]`);
    expect("name in full", fields.Name, hostile);
    expect("memo in full", [fields.Notes === memo, fields.Notes.length > 50000], [true, true]);
    await page.value(`document.getElementById("record").close()`);
    await page.value(`kvdbSearch("</script><script>")`);
    expect("found by its signs", await page.value("kvdbFacts()"), `1 of ${last + 1} rows, Projects in sldb.mdb`);
    await checkQuiet(page, "with hostile texts");
    // Were one of them to get out of its element, the page's policy would still keep it from running.
    await page.value(`document.body.append(Object.assign(document.createElement("script"),
        { textContent: "window.pwned = 1" })); document.body.insertAdjacentHTML("beforeend",
        "<img src=x onerror=window.pwned=1>"); new Promise((done) => setTimeout(done, 100))`);
    expect("a script that is not the page's own", await page.value("typeof window.pwned"), "undefined");
    expect("complaints about it", page.complaints.length >= 2, true);
    await page.close();
}

// A file that is no studio's: its tables, and no pictures.
async function checkPlain(browser) {
    const page = await opened(browser);
    await checkCounts(page);
    expect("cards", await page.value(`document.querySelectorAll(".card, #glance").length`), 0);
    // An amount that is cut would be another one.
    await page.value(`kvdbOpen(${JSON.stringify(wanted[0].Table)})`);
    expect("numbers that are cut", await page.value(`[...document.querySelectorAll("#rows tbody .number")]
        .filter((cell) => cell.scrollWidth > cell.clientWidth).map((cell) => cell.innerText)`), []);
    expect("amounts", await page.value(`kvdbCells("Money")`), ["922337203685477.5807", "-922337203685477.5808",
        "730.56", "-0.0001", "123456789012.3456", ""]);
    for (const { Table, Rows } of wanted) {
        await page.value(`kvdbOpen(${JSON.stringify(Table)})`);
        expect("rows of " + Table, await page.value(`document.getElementById("rows").getAttribute("aria-rowcount")`),
            String(Rows + 1));
    }
    await checkQuiet(page, "with a file that is no studio's");
    await page.close();
}

// Milliseconds that the page's thread has worked for it, which other work of the machine does not change.
async function timed(page, expression) {
    const worked = async () => {
        const { metrics } = await page.send("Performance.getMetrics");
        return 1000 * metrics.find((metric) => metric.name === "TaskDuration").value;
    };
    const before = await worked();
    await page.value(`(async () => { ${expression}; await kvdbFrame(); })()`);
    return await worked() - before;
}

// The first time is one of the clock, and its limit wide.
async function checkVolume(browser) {
    const page = await opened(browser);
    expectBelow("page loaded, pictures and first table shown", await page.value("performance.now()"), 15000);
    await page.send("Performance.enable", { timeDomain: "threadTicks" });
    const all = wanted.reduce((sum, table) => sum + table.Rows, 0);
    expect("enough rows", all >= 100000, true);
    const most = wanted.reduce((a, b) => (a.Rows > b.Rows ? a : b));
    expectBelow(`first look at ${most.Rows} rows`, await timed(page, `location.hash = "#t=${most.Table}";
        await new Promise((done) => addEventListener("hashchange", done, { once: true }))`), 6000);
    const inPage = await page.value(`document.querySelectorAll("#rows tbody tr").length`);
    expect("rows in the document", inPage < 100, true);
    const column = await page.value(`["ClientName", "Name"].find((name) => page.table.column(name) >= 0)`);
    expectBelow("first sorting by " + column, await timed(page, `sortBy(page.table.column("${column}"))`), 6000);
    expectBelow("sorting it again", await timed(page, `sortBy(page.sorted.column)`), 3000);
    expectBelow("first search", await timed(page, `searchFor("client 9999")`), 6000);
    expectBelow("another search", await timed(page, `searchFor("client 77")`), 3000);
    await page.value(`searchFor("")`);
    expectBelow("to the last row", await timed(page, "grid.box.scrollTop = 1e9"), 1000);
    expect("last row", await page.value(`[...document.querySelectorAll("#rows tbody tr[data-place]")].pop()
        .dataset.place`), String(most.Rows - 1));
    await page.value("grid.box.scrollTop = 0; kvdbFrame()");
    const step = (pixels) => `for (let i = 0; i < 60; ++i) { grid.box.scrollTop += ${pixels}; await kvdbFrame(); }`;
    expectBelow("a frame of scrolling by rows", await timed(page, step(90)) / 60, 50);
    expectBelow("a frame of scrolling by screens", await timed(page, step(997)) / 60, 100);
    expect("rows in the document, in the end", await page.value(
        `[...document.querySelectorAll("#rows tbody tr[data-place]")].map((row) => Number(row.dataset.place))
            .every((place, i, all) => place === all[0] + i)`), true);
    await checkCounts(page);
    await checkQuiet(page, "with many rows");
    await page.close();
}

const browser = Browser.start();
if (browser === null) process.exit(SKIP);
const studies = { studio: checkStudio, hostile: checkHostile, volume: checkVolume, plain: checkPlain };
try {
    await studies[study](browser);
    if (study === "studio" || study === "hostile") await checkLooks(browser);
} catch (error) {
    ++failures;
    console.log(error.stack);
}
await browser.close();
console.log(`${study}: ${failures} wrong`);
process.exit(failures === 0 ? 0 : 1);
