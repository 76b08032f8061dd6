// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What the PIN pad knows: the command that waits, the session, the tables; and beginning anew.
import {byId, make, options, say} from "./dom.js";

const RESETS = [["all", "all of it"], ["cards", "the cards"], ["tables", "the tables"], ["keys", "the keys' counters"],
    ["pins", "the PIN tries"], ["media", "the images"], ["plans", "the plans"], ["faults", "the faults"],
    ["findings", "the findings"]];
const FACTS = ["Device", "Waits in", "Card", "Session", "Since", "Till", "Commands", "Tables", "Secrets", "Version"];

export class StatePanel {
    // use(request, words): asks for it, and tells the words where it was done.
    constructor(use) {
        this.titles = new Map();
        this.facts = new Map(FACTS.map((name) => [name, make("dd")]));
        this.facts.forEach((value, name) => byId("facts").append(make("dt", {}, name), value));
        options(byId("reset-what"), RESETS);
        byId("reset").addEventListener("submit", (event) => {
            event.preventDefault();
            const what = byId("reset-what").value;
            use({do: "reset", what}, `Reset: ${RESETS.find(([name]) => name === what)[1]}`);
        });
    }

    hello({device, commands, version, reveal}) {
        this.titles = new Map(commands.map(({id, title}) => [id, title]));
        say(byId("model"), `${device.manufacturer} ${device.model}, ${device.serial}`);
        say(byId("brand"), device.model.split(";")[0]);
        this.fact("Version", version);
        this.fact("Secrets", reveal ? "shown" : "withheld");
    }

    fact(name, value) { say(this.facts.get(name), value); }

    in_words(id) { return this.titles.has(id) ? `${id} ${this.titles.get(id)}` : id; }

    state({port, waiting, session, card, inserted}) {
        const words = waiting ? this.in_words(waiting) : "idle";
        say(byId("waiting"), words);
        byId("waiting").classList.toggle("busy", Boolean(waiting));
        this.fact("Device", port);
        this.fact("Waits in", waiting ? words : "no command");
        this.fact("Card", card ? inserted ?? "inside" : "none inside");
        this.fact("Session", session);
    }

    session({since, host, count, commands}) {
        this.fact("Since", since ?? "–");
        this.fact("Till", host ? "there" : "not there");
        this.fact("Commands", `${count}`);
        say(byId("commands"), commands.join(" ") || "none yet");
    }

    tables({loading, versions, records}) {
        const names = versions.map(({acquirer, version}) => `${version} of acquirer ${acquirer}`).join(", ");
        this.fact("Tables", loading ? "being loaded" : names || (records.length > 0 ? "without a version" : "none"));
        say(byId("tables-summary"), `Tables: ${records.length} records`);
        const head = ["Table", "Acquirer", "Index", "Bytes", "Application"];
        const rows = records.map(({table, acquirer, index, bytes, aid, label}) =>
            [table, acquirer, index, bytes, aid ? `${label.trim()} ${aid}` : ""]);
        byId("tables").replaceChildren(records.length === 0 ? "None are loaded." : make("table", {},
            make("thead", {}, make("tr", {}, ...head.map((name) => make("th", {scope: "col"}, name)))),
            make("tbody", {}, ...rows.map((row) => make("tr", {}, ...row.map((cell) => make("td", {}, `${cell}`)))))));
    }
}
