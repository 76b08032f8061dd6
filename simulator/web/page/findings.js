// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What the till did wrong, or the PIN pad could not do, the newest first.
import {byId, make, say} from "./dom.js";

const MOST = 100;

export class Findings {
    constructor() {
        this.list = byId("finding-list");
        this.last = 0;
        this.lastTime = "";
    }

    forget() {
        this.list.replaceChildren();
        this.last = 0;
    }

    // Those that have come since the last time; all of them, where they were forgotten or numbered anew.
    show({findings, count}) {
        const newest = findings.at(-1)?.number ?? 0;
        const known = findings.find(({number}) => number === this.last);
        const anew = known && known.time !== this.lastTime;
        if (newest < this.last || findings.length === 0 || anew) { this.forget(); }
        const fresh = findings.filter(({number}) => number > this.last).reverse();
        this.list.prepend(...fresh.map((finding) => this.item(finding)));
        while (this.list.children.length > MOST) { this.list.lastChild.remove(); }
        this.last = newest;
        this.lastTime = findings.at(-1)?.time ?? "";
        say(byId("finding-count"), count === 0 ? "none" : `${count}`);
        byId("findings").classList.toggle("some", count > 0);
        byId("clear-findings").disabled = count === 0;
    }

    item({number, time, kind, text, field}) {
        const head = make("p", {class: "kind"}, make("span", {"aria-hidden": "true"}, "! "), kind);
        if (field) { head.append(" ", make("code", {}, field)); }
        head.append(make("time", {}, time.slice(11)));
        return make("li", {"data-number": number}, head, make("p", {}, text));
    }
}
