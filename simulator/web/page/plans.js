// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What the cardholder does by himself as soon as a command waits, and what the PIN pad tells the till.
import {byId, make, options} from "./dom.js";

const ACTS = [["insert", "insert"], ["swipe", "swipe"], ["tap", "tap"], ["remove", "take the card out"],
    ["type", "type digits and ENTER"], ["press", "press a key"], ["choose", "choose an option"]];

const in_words = (act) => Object.values(act).join(" ");

export class Plans {
    constructor(use) {
        this.use = use;
        this.acts = [];
        this.cards = [];
        this.keys = [];
        this.command = make("select", {name: "command"});
        this.act = make("select", {name: "act", onchange: () => this.fit()});
        options(this.act, ACTS);
        this.value = make("span", {class: "row"});
        this.list = make("ol", {id: "acts"});
        this.keep = make("input", {type: "checkbox", name: "keep"});
        const form = byId("plan-form");
        const button = (id, words, onclick) =>
            make("button", {type: onclick ? "button" : "submit", id, onclick}, words);
        form.append(
            make("label", {}, "When this waits ", this.command), this.list,
            make("label", {}, "Act ", this.act), this.value,
            make("label", {class: "switch"}, this.keep, " keep it when the session ends"),
            make("span", {class: "row"}, button("add-act", "Add the act", () => this.add()), button("plan", "Plan"),
                button("clear-plans", "Drop all", () => use({do: "clear-plans"}, "No more plans"))));
        form.addEventListener("submit", (event) => {
            event.preventDefault();
            this.plan();
        });
        byId("notify").addEventListener("submit", (event) => {
            event.preventDefault();
            use({do: "notify", text: byId("notify-text").value}, "Told");
        });
        this.fit();
    }

    hello({commands, keys}) {
        options(this.command, commands.map(({id, title}) => [id, `${id} ${title}`]));
        if (commands.some(({id}) => id === "GCX")) { this.command.value = "GCX"; }
        this.keys = keys;
        this.fit();
    }

    set_cards({cards}) {
        this.cards = cards.map(({name}) => name);
        this.fit();
    }

    fit() {
        const act = this.act.value;
        const choice = (name, label, values) => {
            const select = make("select", {name});
            options(select, values.map((value) => [value, value]));
            return make("label", {}, `${label} `, select);
        };
        const field = {
            type: () => make("label", {}, "Digits ", make("input", {
                name: "digits", pattern: "[0-9]{0,32}", inputmode: "numeric", autocomplete: "off"
            })),
            press: () => choice("key", "Key", this.keys),
            choose: () => make("label", {}, "Option ", make("input", {
                name: "option", type: "number", min: 1, max: 99, value: 1
            })),
            remove: () => ""
        }[act] ?? (() => choice("card", "Card", this.cards));
        this.value.replaceChildren(field());
    }

    current() {
        const act = {do: this.act.value};
        const input = this.value.querySelector("input, select");
        if (input) { act[input.name] = input.type === "number" ? input.valueAsNumber : input.value; }
        return act;
    }

    add() {
        this.acts.push(this.current());
        this.show_acts();
    }

    show_acts() { this.list.replaceChildren(...this.acts.map((act) => make("li", {}, in_words(act)))); }

    // The act in the form is the plan, where none was added.
    async plan() {
        const acts = this.acts.length > 0 ? this.acts : [this.current()];
        const request = {do: "when", command: this.command.value, acts};
        if (this.keep.checked) { request.keep = true; }
        if (await this.use(request, `Planned for ${this.command.value}`)) {
            this.acts = [];
            this.show_acts();
        }
    }

    show({plans, unused}) {
        const item = ({command, acts, keep}, kind, more) => make("li", {class: kind},
            `${command}: ${acts} ${acts === 1 ? "act" : "acts"}${keep ? ", kept" : ""}${more}`);
        byId("plan-list").replaceChildren(...plans.map((plan) => item(plan, "due", "")),
            ...unused.map((plan) => item(plan, "unused", ", dropped unused")));
        byId("clear-plans").disabled = plans.length + unused.length === 0;
    }
}
