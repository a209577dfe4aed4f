// The table on the screen: of its rows, those alone that can be seen are in the document.

const ROW_HEIGHT = 36;
const MOST_HEIGHT = 8000000;  // of all rows, in pixels; beyond it the scroll bar stands for a share of the rows
const ROWS_AROUND = 8;
const MOST_CELL_CHARACTERS = 200;

class Grid {
    constructor(open, sortBy) {
        this.box = document.getElementById("grid");
        this.head = document.querySelector("#rows thead");
        this.body = document.querySelector("#rows tbody");
        this.whole = document.getElementById("rows");
        this.nothing = document.getElementById("nothing");
        this.open = open;
        this.sortBy = sortBy;
        this.numbers = [];
        this.active = 0;
        this.box.addEventListener("scroll", () => this.drawSoon(), { passive: true });
        new ResizeObserver(() => this.drawSoon()).observe(this.box);
        this.body.addEventListener("click", (event) => this.clicked(event));
        this.body.addEventListener("keydown", (event) => this.keyPressed(event));
    }

    // Another table, or other columns of it.
    show(table, columns, sorted) {
        this.table = table;
        this.columns = columns;
        this.drawHead(sorted);
    }

    // The rows to show, by their numbers in the table.
    showRows(numbers, emptyText) {
        this.numbers = numbers;
        this.active = 0;
        this.box.scrollTop = 0;
        this.nothing.textContent = emptyText;
        this.nothing.hidden = numbers.length > 0;
        this.whole.setAttribute("aria-rowcount", String(numbers.length + 1));
        this.draw(true);
    }

    drawHead(sorted) {
        const row = element("tr");
        row.setAttribute("aria-rowindex", "1");
        row.append(element("th", "Row", { scope: "col" }));
        const widths = [64];
        for (const i of this.columns) {
            const column = this.table.columns[i];
            const cell = element("th", undefined, { scope: "col" });
            if (isNumber(column)) cell.className = "number";
            if (sorted !== null && sorted.column === i) {
                cell.setAttribute("aria-sort", sorted.descending ? "descending" : "ascending");
            }
            const button = element("button", undefined, { type: "button", title: column.type });
            button.append(element("span", column.name));
            button.addEventListener("click", () => this.sortBy(i));
            cell.append(button);
            row.append(cell);
            widths.push(this.widthOf(i));
        }
        this.head.replaceChildren(row);
        this.whole.querySelector("colgroup")?.remove();
        const group = element("colgroup");
        for (const width of widths) {
            const column = element("col");
            column.style.width = width + "px";
            group.append(column);
        }
        this.whole.prepend(group);
        this.whole.style.width = widths.reduce((sum, width) => sum + width, 0) + "px";
        this.whole.setAttribute("aria-colcount", String(this.columns.length + 1));
    }

    // By its name and by some of its values, spread over the table.
    widthOf(i) {
        const column = this.table.columns[i];
        const rows = this.table.rows;
        const step = isNumber(column) ? 1 : Math.max(1, Math.floor(rows.length / 1000));
        let characters = column.name.length + 2;
        for (let r = 0; r < rows.length; r += step) {
            const value = rows[r][i];
            // An amount grows by its decimals.
            if (value === undefined || String(value).length + 3 <= characters) continue;
            characters = Math.max(characters, shown(value, column).length);
        }
        // A number that is cut would be another one.
        return Math.round(isNumber(column) ? characters * 8.8 + 24 : Math.min(characters, 38) * 7.7 + 24);
    }

    get rowsInView() {
        return Math.max(1, Math.floor((this.box.clientHeight - ROW_HEIGHT) / ROW_HEIGHT));
    }

    get height() {
        return Math.min(this.numbers.length * ROW_HEIGHT, MOST_HEIGHT);
    }

    // The first row in view, with its fraction.
    get firstInView() {
        const all = this.numbers.length * ROW_HEIGHT;
        if (all <= MOST_HEIGHT) return this.box.scrollTop / ROW_HEIGHT;
        const most = this.height - this.rowsInView * ROW_HEIGHT;
        return Math.min(1, this.box.scrollTop / most) * (this.numbers.length - this.rowsInView);
    }

    drawSoon() {
        if (this.isDrawingSoon) return;
        this.isDrawingSoon = true;
        requestAnimationFrame(() => {
            this.isDrawingSoon = false;
            this.draw(false);
        });
    }

    draw(isNew) {
        if (this.table === undefined) return;
        const inView = this.firstInView;
        const first = Math.max(0, Math.floor(inView) - ROWS_AROUND);
        const end = Math.min(this.numbers.length, Math.ceil(inView) + this.rowsInView + ROWS_AROUND + 1);
        if (!isNew && first === this.first && end === this.end) return;
        const hadFocus = this.body.contains(document.activeElement);
        if (isNew || first >= this.end || end <= this.first) {
            this.body.replaceChildren(this.space(), this.space());
            this.first = this.end = first;
        }
        this.moveTo(first, end);
        const above = Math.max(0, this.box.scrollTop - (inView - first) * ROW_HEIGHT);
        const below = Math.max(0, this.height - above - (end - first) * ROW_HEIGHT);
        this.body.firstChild.firstChild.style.height = above + "px";
        this.body.lastChild.firstChild.style.height = below + "px";
        if (hadFocus && !this.body.contains(document.activeElement) && !this.focusActive()) {
            this.box.focus({ preventScroll: true });
        }
    }

    // Rows that stay in view stay in the document.
    moveTo(first, end) {
        const { body } = this;
        for (; this.first < first; ++this.first) body.children[1].remove();
        for (; this.end > end; --this.end) body.lastChild.previousSibling.remove();
        while (this.first > first) body.firstChild.after(this.rowAt(--this.first));
        while (this.end < end) body.lastChild.before(this.rowAt(this.end++));
    }

    space() {
        const row = element("tr", undefined, { className: "space" });
        row.setAttribute("aria-hidden", "true");
        const cell = element("td", undefined, { colSpan: this.columns.length + 1 });
        row.append(cell);
        return row;
    }

    rowAt(place) {
        const values = this.table.rows[this.numbers[place]];
        const row = element("tr");
        row.setAttribute("aria-rowindex", String(place + 2));
        row.dataset.place = String(place);
        const head = element("th", undefined, { scope: "row" });
        const button = element("button", (place + 1).toLocaleString("en"), { type: "button" });
        button.tabIndex = place === this.active ? 0 : -1;
        button.setAttribute("aria-label", "Open row " + (place + 1) + " " + this.table.labelOf(values).slice(0, 80));
        head.append(button);
        row.append(head);
        for (const i of this.columns) {
            const column = this.table.columns[i];
            const text = shown(values[i], column);
            const cell = element("td", text.slice(0, MOST_CELL_CHARACTERS));
            if (isNumber(column)) cell.className = "number";
            row.append(cell);
        }
        return row;
    }

    focusActive() {
        const row = this.body.querySelector('tr[data-place="' + this.active + '"] button');
        row?.focus({ preventScroll: true });
        return row !== null;
    }

    // Brings the row into view and gives it the focus.
    goTo(place) {
        this.active = Math.max(0, Math.min(place, this.numbers.length - 1));
        const all = this.numbers.length * ROW_HEIGHT;
        const first = this.firstInView;
        const last = first + this.rowsInView - 1;
        let wanted = null;
        if (this.active < Math.ceil(first)) wanted = this.active;
        if (this.active > Math.floor(last)) wanted = this.active - this.rowsInView + 1;
        if (wanted !== null) {
            const most = this.height - this.rowsInView * ROW_HEIGHT;
            const share = wanted / Math.max(1, this.numbers.length - this.rowsInView);
            this.box.scrollTop = all <= MOST_HEIGHT ? wanted * ROW_HEIGHT : share * most;
        }
        this.draw(true);
        this.focusActive();
    }

    clicked(event) {
        const row = event.target.closest("tr[data-place]");
        // Who marks a text with the mouse does not want the record.
        if (row === null || String(document.getSelection()) !== "") return;
        this.active = Number(row.dataset.place);
        this.open(this.active);
    }

    keyPressed(event) {
        if (event.ctrlKey || event.altKey || event.metaKey) return;
        const places = {
            ArrowDown: this.active + 1,
            ArrowUp: this.active - 1,
            PageDown: this.active + this.rowsInView,
            PageUp: this.active - this.rowsInView,
            Home: 0,
            End: this.numbers.length - 1,
        };
        if (!(event.key in places)) return;
        event.preventDefault();
        this.goTo(places[event.key]);
    }
}

function isNumber(column) {
    return column.kind === "number" || column.kind === "money";
}
