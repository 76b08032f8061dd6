// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The traffic in words. Lines are kept in blocks that the browser lays out only where they are seen, and the oldest
// block goes when there are too many.
import {byId, make, say, unseen} from "./dom.js";

export const MOST_LINES = 10000;
const BLOCK = 100;
// The least height of a line: too small a guess never makes the end of the list jump back.
const ROW_PX = 24;
const NEAR_END_PX = 30;
const FROM = {host: ["till →", "till"], "pin-pad": ["← pad", "PIN pad"], finding: ["! finding", "finding"]};
const FILTERS = [["host", "From the till"], ["pin-pad", "From the PIN pad"], ["control", "ACK and the like"],
    ["finding", "Findings"], ["bytes", "Bytes"]];

// A single byte is no frame.
const is_control = (line) => line.bytes !== undefined && line.bytes.length <= 2;

// The id of a command stands out, and the field that a finding is about.
function words_of(line) {
    if (line.from === "finding") {
        const words = make("span", {class: "words"}, make("b", {}, line.kind ? `${line.kind}: ` : ""));
        const [before, ...behind] = line.field ? line.words.split(line.field) : [line.words];
        words.append(before);
        if (behind.length > 0) { words.append(make("code", {}, line.field), behind.join(line.field)); }
        return words;
    }
    const fault = line.fault ? [make("span", {class: "badge"}, `fault: ${line.fault}`)] : [];
    const text = line.words.replace(` (fault: ${line.fault})`, "");
    const [, before, id, behind] = /^(enciphered )?([A-Z]{3})?(.*)$/s.exec(text);
    return make("span", {class: "words"}, ...fault, before ?? "", make("b", {}, id ?? ""), behind);
}

export class Traffic {
    constructor() {
        this.list = byId("lines");
        this.blocks = [];
        this.on = {host: true, "pin-pad": true, control: true, finding: true, bytes: false};
        this.query = "";
        this.count = 0;
        this.seen = 0;
        this.following = true;
        this.behind = 0;
        this.top = 0;
        byId("filters").append(...FILTERS.map(([name, words]) => make("button", {
            type: "button", "data-filter": name, "aria-pressed": `${this.on[name]}`,
            onclick: (event) => this.toggle(name, event.currentTarget)
        }, words)));
        byId("search").addEventListener("input", (event) => {
            this.query = event.target.value.trim().toLowerCase();
            this.filter();
        });
        byId("newest").addEventListener("click", () => this.follow());
        this.list.addEventListener("scroll", () => this.scrolled(), {passive: true});
        // A block that is laid out at last is higher than was guessed.
        this.sizes = new ResizeObserver(() => this.to_end());
        this.sizes.observe(this.list);
        this.tell();
    }

    toggle(name, button) {
        this.on[name] = !this.on[name];
        button.setAttribute("aria-pressed", this.on[name]);
        if (name !== "bytes") { return this.filter(); }
        this.list.classList.toggle("with-bytes", this.on.bytes);
        if (this.on.bytes) { this.blocks.forEach(({rows}) => rows.forEach((row) => this.add_bytes(row))); }
        this.to_end();
    }

    // Only for who wants to see them: they are most of the text.
    add_bytes(row) {
        if (row.line.bytes === undefined || row.withBytes) { return; }
        row.withBytes = true;
        row.element.append(make("code", {class: "bytes"}, row.line.bytes));
    }

    matches({line, text}) {
        if (line.from === undefined) { return true; }
        if (!this.on[line.from] || (!this.on.control && is_control(line))) { return false; }
        if (this.query === "" || text.includes(this.query)) { return true; }
        return line.bytes !== undefined && line.bytes.length > 2 && line.bytes.toLowerCase().includes(this.query);
    }

    row_of(line) {
        if (line.from === undefined) { return {line, element: make("li", {class: "remark"}, line.words)}; }
        const [sign, words] = FROM[line.from] ?? [line.from, line.from];
        const element = make("li", {class: `line ${line.from}${is_control(line) ? " control" : ""}`},
            make("span", {class: "time"}, line.time.slice(11)),
            make("span", {class: "from"}, make("span", {"aria-hidden": "true"}, sign), unseen(`${words}: `)),
            words_of(line));
        const text = [line.words, line.kind, line.field, line.fault].filter(Boolean).join(" ").toLowerCase();
        return {line, element, text};
    }

    // As many as have come since the last frame of the browser, at once.
    add(lines) {
        const matched = this.seen;
        const touched = new Set();
        for (const line of lines) {
            if (this.blocks.length === 0 || this.blocks.at(-1).rows.length === BLOCK) {
                const element = make("ol", {});
                this.blocks.push({element, rows: [], seen: 0});
                this.list.append(element);
                this.sizes.observe(element);
            }
            const block = this.blocks.at(-1);
            const row = this.row_of(line);
            touched.add(block);
            block.rows.push(row);
            block.element.append(row.element);
            ++this.count;
            if (this.on.bytes) { this.add_bytes(row); }
            row.element.hidden = !this.matches(row);
            if (row.element.hidden) { continue; }
            if (block.stale) { block.rows.forEach((each) => { each.element.hidden = each !== row; }); }
            block.stale = false;
            ++block.seen;
            ++this.seen;
        }
        touched.forEach((block) => this.size(block));
        const fresh = this.seen - matched;
        while (this.count > MOST_LINES) { this.drop_block(); }
        if (!this.following) { this.behind += fresh; }
        this.to_end();
    }

    drop_block() {
        const block = this.blocks.shift();
        this.sizes.unobserve(block.element);
        block.element.remove();
        this.count -= block.rows.length;
        this.seen -= block.seen;
    }

    size({element, seen}) {
        element.hidden = seen === 0;
        element.style.containIntrinsicBlockSize = `${seen * ROW_PX}px`;
    }

    // A block without a match is hidden as a whole: its rows are left as they are, which spares most of the work.
    filter() {
        this.seen = 0;
        for (const block of this.blocks) {
            const matched = block.rows.map((row) => this.matches(row));
            block.seen = matched.filter(Boolean).length;
            block.stale = block.seen === 0;
            if (!block.stale) { block.rows.forEach((row, i) => { row.element.hidden = !matched[i]; }); }
            this.size(block);
            this.seen += block.seen;
        }
        this.to_end();
    }

    // Says why there is a gap, or that what is below is of another run.
    remark(words) { this.add([{words}]); }

    clear() {
        while (this.blocks.length > 0) { this.drop_block(); }
        this.count = this.seen = this.behind = 0;
        this.following = true;
        this.tell();
    }

    follow() {
        this.following = true;
        this.to_end();
    }

    to_end() {
        if (this.following) {
            this.behind = 0;
            this.list.scrollTop = this.list.scrollHeight;
            this.top = this.list.scrollTop;
        }
        this.tell();
    }

    // Whoever scrolls back reads, so the list stands still until the end is reached again.
    scrolled() {
        const {scrollTop, scrollHeight, clientHeight} = this.list;
        if (scrollHeight - scrollTop - clientHeight < NEAR_END_PX) {
            this.following = true;
            this.behind = 0;
        } else if (scrollTop < this.top - 1) { this.following = false; }
        this.top = scrollTop;
        this.tell();
    }

    tell() {
        this.list.classList.toggle("following", this.following);
        byId("newest").hidden = this.following;
        say(byId("newest"), this.behind > 0 ? `To the newest: ${this.behind} more` : "To the newest");
        say(byId("shown"), this.seen === this.count ? `${this.count} lines` : `${this.seen} of ${this.count} lines`);
    }
}
