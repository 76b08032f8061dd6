// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The display: texts, menus and what is typed, by lines and columns as the PIN pad has them, or an image.
import {byId, make, say} from "./dom.js";

// Text that is too wide goes on in the next line, as some commands send two full lines without an end between them.
function text_lines(text, columns) {
    const lines = [];
    for (const part of text.split("\r")) {
        let rest = part;
        do {
            lines.push(rest.slice(0, columns));
            rest = rest.slice(columns);
        } while (rest !== "");
    }
    if (lines.at(-1) === "") { lines.pop(); }
    return lines;
}

// With their numbers, as the digit chooses too; the chosen one among them, however many there are.
function menu_lines(screen, rows, columns) {
    const count = Math.min(rows, screen.menu.length);
    const first = Math.min(Math.max(screen.selected - count, 0), screen.menu.length - count);
    return screen.menu.slice(first, first + count).map((option, i) => {
        const number = first + i + 1;
        const chosen = number === screen.selected;
        return {text: `${number}${chosen ? ">" : " "}${option}`.slice(0, columns), chosen};
    });
}

const centred = (text, columns) => " ".repeat(Math.max(0, Math.floor((columns - text.length) / 2))) + text;

export function display_lines(screen, {rows, columns}) {
    let lines = text_lines(screen.text, columns).map((text) => ({text}));
    if (screen.menu.length > 0) {
        lines = lines.slice(0, Math.floor(rows / 2));
        lines.push(...menu_lines(screen, rows - lines.length, columns));
    }
    lines = lines.slice(0, screen.typed === "" ? rows : rows - 1);
    if (screen.typed !== "") { lines.push({text: centred(screen.typed.slice(-columns), columns), typed: true}); }
    while (lines.length < rows) { lines.push({text: ""}); }
    return lines;
}

function in_words(screen) {
    const parts = [screen.text.replaceAll("\r", " ").replace(/ +/g, " ").trim()];
    if (screen.media !== "") { parts.push(`image ${screen.media}`); }
    if (screen.menu.length > 0) {
        parts.push(`option ${screen.selected} of ${screen.menu.length}: ${screen.menu[screen.selected - 1] ?? ""}`);
    }
    if (/^\*+$/.test(screen.typed)) {
        parts.push(`${screen.typed.length} digits typed`);
    } else if (screen.typed !== "") { parts.push(`typed: ${screen.typed}`); }
    return parts.filter((part) => part !== "").join(". ");
}

export class Display {
    constructor(link) {
        this.link = link;
        this.element = byId("display");
        this.words = byId("display-words");
        this.size = {rows: 4, columns: 16, width: 160, height: 128};
        this.images = new Map();
        this.shown = 0;
    }

    // Another run of the program may have other images under the same names.
    hello({device}) {
        this.size = device;
        this.element.style.setProperty("--columns", device.columns);
        this.element.style.setProperty("--rows", device.rows);
        this.element.style.setProperty("aspect-ratio", `${device.width} / ${device.height}`);
        this.forget();
    }

    forget() {
        for (const url of this.images.values()) { URL.revokeObjectURL(url); }
        this.images.clear();
    }

    async show(screen) {
        const turn = ++this.shown;
        say(this.words, in_words(screen));
        const image = screen.media === "" ? null : await this.image(screen.media);
        if (turn !== this.shown) { return; }
        this.element.classList.toggle("picture", image !== null);
        if (image) { return this.element.replaceChildren(image); }
        const text = screen.media === "" ? screen : {...screen, text: `[${screen.media}]`};
        this.element.replaceChildren(...display_lines(text, this.size).map((line) => {
            const kind = line.chosen ? "chosen" : line.typed ? "typed" : undefined;
            return make("div", {class: kind}, line.text || "\u00a0");
        }));
    }

    // A file of that name may have been loaded anew since, so it is asked for each time it is shown.
    async image(name) {
        try {
            const blob = await this.link.file(`/api/media/${encodeURIComponent(name)}`);
            const image = make("img", {alt: ""});
            const old = this.images.get(name);
            if (old) { URL.revokeObjectURL(old); }
            this.images.set(name, URL.createObjectURL(blob));
            image.src = this.images.get(name);
            await image.decode();
            // A point of the image is one of the display.
            image.style.width = `${100 * image.naturalWidth / this.size.width}%`;
            return image;
        } catch { return null; }
    }
}
