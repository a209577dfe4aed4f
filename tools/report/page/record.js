// One record: all its fields in full, what it belongs to, and what belongs to it.

class RecordView {
    // `grid` tells the rows before and after; `goTo` shows a table's rows with a value in a column.
    constructor(grid, goTo) {
        this.grid = grid;
        this.goTo = goTo;
        this.dialog = document.getElementById("record");
        this.heading = document.getElementById("record-heading");
        this.body = document.getElementById("record-body");
        this.before = document.getElementById("record-before");
        this.after = document.getElementById("record-after");
        this.before.addEventListener("click", () => this.show(this.place - 1));
        this.after.addEventListener("click", () => this.show(this.place + 1));
        document.getElementById("record-close").addEventListener("click", () => this.dialog.close());
        this.dialog.addEventListener("click", (event) => {
            if (event.target === this.dialog) this.dialog.close();
        });
        this.dialog.addEventListener("close", () => {
            if (!this.isLeaving) this.grid.goTo(this.place);
            this.isLeaving = false;
        });
    }

    show(place) {
        const { table, numbers } = this.grid;
        this.place = place;
        const row = table.rows[numbers[place]];
        const label = table.labelOf(row);
        this.heading.textContent = table.title + (label === "" ? ", row " + (place + 1) : ": " + label);
        const list = element("dl");
        table.columns.forEach((column, i) => {
            const pair = element("div");
            const value = element("dd", shown(row[i], column));
            this.addParent(value, column, row[i]);
            pair.append(element("dt", column.name, { title: column.type }), value);
            list.append(pair);
        });
        this.body.replaceChildren(list, ...this.children(table, row));
        this.body.scrollTop = 0;
        this.before.disabled = place === 0;
        this.after.disabled = place === numbers.length - 1;
        // A button that was pressed keeps the focus, unless it can be pressed no more.
        const wasOpen = this.dialog.open;
        if (!wasOpen) this.dialog.showModal();
        if (!wasOpen || !this.dialog.contains(document.activeElement) || document.activeElement.disabled) {
            this.body.focus();
        }
    }

    leaveFor(table, column, value) {
        this.isLeaving = true;
        this.dialog.close();
        this.goTo(table, column, value);
    }

    // The name of the record that the column's value leads to.
    addParent(cell, column, value) {
        if (column.parent === undefined || isEmpty(value)) return;
        const table = tableCalled(column.parent.table);
        if (table === undefined) return;
        const key = table.column(column.parent.column);
        const number = table.byValue(key).get(value)?.[0];
        if (number === undefined) return;
        const button = element("button", table.labelOf(table.rows[number]) || table.title,
            { type: "button", className: "parent", title: "Show in " + table.title });
        button.addEventListener("click", () => this.leaveFor(table, key, value));
        cell.append(button);
    }

    // Buttons for the rows of other tables that lead here.
    children(table, row) {
        const list = element("div", undefined, { className: "links" });
        for (const other of tables) {
            other.columns.forEach((column, i) => {
                if (column.parent === undefined || column.parent.table !== table.name) return;
                const value = row[table.column(column.parent.column)];
                const count = isEmpty(value) ? 0 : other.byValue(i).get(value)?.length ?? 0;
                if (count === 0) return;
                const button = element("button", other.title + " (" + column.name + "): " + count.toLocaleString("en"),
                    { type: "button" });
                button.addEventListener("click", () => this.leaveFor(other, i, value));
                list.append(button);
            });
        }
        return list.childElementCount === 0 ? [] : [element("h3", "What belongs to it"), list];
    }
}
