// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The cards, the one in the hand, and the three readers that take it.
import {byId, make, say} from "./dom.js";

const READERS = [
    {id: "slot", part: "chip", act: "insert", word: "Insert", done: "inserted", lacks: "has no chip"},
    {id: "stripe", part: "stripe", act: "swipe", word: "Swipe", done: "swiped", lacks: "has no stripe"},
    {id: "field", part: "contactless", act: "tap", word: "Tap", done: "tapped", lacks: "has no antenna"}
];
const DRAGGED = "text/plain";

// A colour of its own for each name's first word.
function brand_of(name) {
    const known = ["visa", "mastercard", "elo", "amex", "phone"];
    return known.find((brand) => name.startsWith(brand)) ?? "other";
}

export class Tray {
    // use(request, words): asks for it, and says the words where it was done; remark(words) says them.
    constructor(use, remark) {
        this.use = use;
        this.remark = remark;
        this.cards = [];
        this.hand = "";
        this.inserted = null;
        this.full = false;
        this.acts = READERS.map((reader) => make("button", {
            type: "button", "data-act": reader.act, onclick: () => this.present(reader)
        }, reader.word));
        this.out = make("button", {type: "button", "data-act": "remove", onclick: () => this.take_out()}, "Take out");
        byId("card-acts").append(...this.acts, this.out);
        READERS.forEach((reader) => this.make_reader(reader));
        this.show();
    }

    make_reader(reader) {
        const element = byId(reader.id);
        element.addEventListener("click", () => {
            if (reader.act === "insert" && this.full) { return this.take_out(); }
            this.present(reader);
        });
        element.addEventListener("dragover", (event) => {
            event.preventDefault();
            element.classList.add("over");
        });
        element.addEventListener("dragleave", () => element.classList.remove("over"));
        element.addEventListener("drop", (event) => {
            event.preventDefault();
            element.classList.remove("over");
            this.take(event.dataTransfer.getData(DRAGGED));
            this.present(reader);
        });
    }

    set({cards}) {
        this.cards = cards;
        const named = (name) => cards.find((card) => card.name === name);
        this.hand = (named(this.hand) ?? named("visa-chip") ?? cards[0])?.name ?? "";
        byId("cards").replaceChildren(...cards.map((card) => this.make_card(card)));
        this.show();
    }

    make_card(card) {
        const parts = READERS.filter(({part}) => card[part]).map(({part}) => part);
        const more = [card.pan, card.pin && `PIN ${card.pin}`].filter(Boolean).join(", ");
        const element = make("button", {
            type: "button", class: `card ${brand_of(card.name)}`, "data-card": card.name, draggable: "true",
            onclick: () => this.take(card.name),
            ondragstart: (event) => event.dataTransfer.setData(DRAGGED, card.name)
        }, make("span", {class: "card-name"}, card.name));
        if (more) { element.append(make("span", {class: "card-more"}, more)); }
        element.append(make("span", {class: "parts"}, parts.join(" · ") || "nothing to read"));
        return element;
    }

    take(name) {
        if (!this.cards.some((card) => card.name === name)) { return; }
        this.hand = name;
        this.show();
    }

    // From one card to the next, at the end to the first.
    step(by) {
        const at = this.cards.findIndex(({name}) => name === this.hand);
        if (at < 0) { return; }
        this.take(this.cards[(at + by + this.cards.length) % this.cards.length].name);
        byId("cards").querySelector("[aria-pressed=true]").scrollIntoView({block: "nearest"});
    }

    present(reader) {
        const card = this.cards.find(({name}) => name === this.hand);
        if (!card) { return; }
        if (!card[reader.part]) { return this.remark(`${card.name} ${reader.lacks}`); }
        if (reader.act === "insert" && this.full) { return this.remark("There is a card in the reader"); }
        this.use({do: reader.act, card: card.name}, `${card.name} ${reader.done}`);
    }

    take_out() { this.use({do: "remove"}, "Card taken out"); }

    // As keys of the keyboard have it; whether there is such a key.
    act(key) {
        const reader = READERS.find(({word}) => word[0].toLowerCase() === key);
        if (reader) { byId(reader.id).click(); }
        if (key === "ArrowLeft") { this.step(-1); }
        if (key === "ArrowRight") { this.step(1); }
        return reader !== undefined || /^Arrow(Left|Right)$/.test(key);
    }

    state({card, inserted}) {
        if (this.full === card && this.inserted === inserted) { return; }
        this.full = card;
        this.inserted = inserted;
        this.show();
    }

    show() {
        const card = this.cards.find(({name}) => name === this.hand);
        for (const element of byId("cards").children) {
            element.setAttribute("aria-pressed", element.dataset.card === this.hand);
            element.classList.toggle("inside", this.full && element.dataset.card === this.inserted);
        }
        this.acts.forEach((button, i) => {
            button.disabled = !card?.[READERS[i].part] || (READERS[i].act === "insert" && this.full);
        });
        this.out.disabled = !this.full;
        say(byId("slot-words"), this.full ? "Take out" : "Insert");
        const brand = brand_of(this.inserted ?? "");
        byId("slot").className = `reader slot ${this.full ? `full ${brand}` : ""}`;
        byId("card-inside").hidden = !this.full;
        byId("card-inside").className = `inside-card ${brand}`;
        say(byId("card-inside"), this.full ? this.inserted ?? "a card without a name" : "");
        say(byId("in-hand"), card ? `In the hand: ${card.name}` : "No card in the hand");
    }
}
