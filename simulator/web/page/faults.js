// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What goes wrong on request: the faults that are on, the form that switches one on, and unplugging.
import {byId, make, options} from "./dom.js";

const MEANS = {
    "no-answer": "no response", delay: "the response comes late", "slow-bytes": "its bytes come slowly",
    split: "it comes in two halves", garbage: "other bytes come before it", "bad-crc": "its checksum is wrong",
    truncated: "half of it comes", "wrong-id": "it answers another command", status: "a status of your choice",
    "too-long": "it claims to be longer than it is", "bad-cryptogram": "its content makes no sense",
    nak: "the command is refused", "lost-ack": "the command is not confirmed", "hang-up": "the line ends"
};
const NEEDS = {
    ms: {label: "Milliseconds", min: 1, max: 86400000, value: 1500},
    status: {label: "Status", min: 0, max: 999, value: 12}
};
const WHEN = [["once", "once"], ["times", "so many times"], ["every", "at every so many-th"], ["chance", "by chance"]];
const AMOUNT = {
    times: {label: "Times", min: 1, step: 1, value: 3}, every: {label: "Every", min: 1, step: 1, value: 2},
    chance: {label: "Chance", min: 0.01, max: 1, step: 0.01, value: 0.25}
};

export function in_words(fault) {
    const parts = [fault.fault];
    if (fault.ms !== undefined) { parts[0] += ` ${fault.ms} ms`; }
    if (fault.status !== undefined) { parts[0] += ` ${fault.status}`; }
    if (fault.before) { parts.push(fault["as-error"] ? "in place of the command, as ERR" : "in place of the command"); }
    if (fault.command) { parts.push(`in ${fault.command}`); }
    if (fault.every !== undefined) { parts.push(`every ${fault.every}`); }
    if (fault.chance !== undefined) { parts.push(`chance ${fault.chance}`); }
    parts.push(fault.times === undefined ? "until switched off" : fault.times === 1 ? "once" : `${fault.times} times`);
    return parts.join(", ");
}

function number_field(name, {label, ...limits}) {
    return make("label", {}, `${label} `, make("input", {type: "number", name, required: true, ...limits}));
}

function checkbox(name, words) {
    return make("label", {class: "switch"}, make("input", {type: "checkbox", name}), words);
}

export class Faults {
    constructor(use) {
        this.use = use;
        this.kinds = new Map();
        this.form = byId("fault-form");
        this.kind = make("select", {name: "fault", onchange: () => this.fit()});
        this.command = make("select", {name: "command"});
        this.when = make("select", {name: "when", onchange: () => this.fit()});
        options(this.when, WHEN);
        this.detail = make("span", {class: "row"});
        this.amount = make("span", {class: "row"});
        this.before = checkbox("before", " in place of the command");
        this.asError = checkbox("as-error", " in the name of ERR");
        this.form.append(
            make("label", {}, "What ", this.kind), this.detail, make("label", {}, "Where ", this.command),
            make("label", {}, "When ", this.when), this.amount, this.before, this.asError,
            make("span", {class: "row"}, make("button", {id: "fault-on"}, "Switch on"),
                make("button", {
                    type: "button", id: "faults-off", onclick: () => use({do: "clear-faults"}, "All faults are off")
                }, "Switch all off")));
        this.form.addEventListener("submit", (event) => {
            event.preventDefault();
            const request = this.request();
            use(request, `Switched on: ${request.fault}`);
        });
        byId("unplug").addEventListener("submit", (event) => {
            event.preventDefault();
            use({do: "hang-up", ms: byId("unplug-ms").valueAsNumber}, "Unplugged");
        });
    }

    hello({faults, commands}) {
        this.kinds = new Map(faults.map(({fault, needs}) => [fault, needs]));
        options(this.kind, faults.map(({fault}) => [fault, MEANS[fault] ? `${fault}: ${MEANS[fault]}` : fault]));
        options(this.command, [["", "any command"], ...commands.map(({id, title}) => [id, `${id} ${title}`]),
            ["NTM", "NTM notifications"]]);
        this.fit();
    }

    // What a fault needs, and only that.
    fit() {
        const needs = this.kinds.get(this.kind.value);
        this.detail.replaceChildren(...NEEDS[needs] ? [number_field(needs, NEEDS[needs])] : []);
        const amount = AMOUNT[this.when.value];
        this.amount.replaceChildren(...amount ? [number_field("amount", amount)] : []);
        this.before.hidden = this.asError.hidden = needs !== "status";
    }

    request() {
        const {elements} = this.form;
        const request = {do: "fault", fault: this.kind.value};
        const needs = this.kinds.get(this.kind.value);
        if (needs) { request[needs] = elements[needs].valueAsNumber; }
        if (this.command.value) { request.command = this.command.value; }
        if (this.when.value !== "once") { request[this.when.value] = elements.amount.valueAsNumber; }
        if (needs === "status" && (elements.before.checked || elements["as-error"].checked)) { request.before = true; }
        if (needs === "status" && elements["as-error"].checked) { request["as-error"] = true; }
        return request;
    }

    show({faults}) {
        byId("fault-list").replaceChildren(...faults.map((fault) => make("li", {}, in_words(fault))));
        byId("faults-off").disabled = faults.length === 0;
        byId("faults").classList.toggle("some", faults.length > 0);
    }
}
