// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The keys of the PIN pad, and those of a real keyboard that press them.
import {byId, make} from "./dom.js";

const LAYOUT = [
    ["f1", "F1"], ["f2", "F2"], ["f3", "F3"], ["f4", "F4"], ["up", "▲", "UP"], ["down", "▼", "DOWN"],
    ..."123456789".split("").map((digit) => [digit, digit]), ["0", "0"],
    ["cancel", "✕", "CANCEL"], ["clear", "◁", "CLEAR"], ["enter", "○", "ENTER"]
];
const OF_KEYBOARD = {
    Enter: "enter", Backspace: "clear", Delete: "clear", Escape: "cancel", ArrowUp: "up", ArrowDown: "down",
    F1: "f1", F2: "f2", F3: "f3", F4: "f4", a: "f1", b: "f2", c: "f3", d: "f4"
};

// Where a key means something else: text is typed, a list scrolled, what has the focus pressed.
function taken(target, key) {
    if (/^F\d/.test(key)) { return false; }
    if (target.closest("input:not([type=checkbox]), select, textarea")) { return true; }
    if (/^Arrow/.test(key) && target.closest("[tabindex]")) { return true; }
    return (key === "Enter" || key === " ") && target.closest("a, button, summary, input") !== null;
}

export class Keypad {
    // press(key) presses one of the PIN pad's; act(key) gets every other key of the keyboard.
    constructor(press, act) {
        this.buttons = new Map();
        const element = byId("keys");
        for (const [key, sign, name] of LAYOUT) {
            const kind = /^\d$/.test(key) ? "digit" : key;
            const button = make("button", {
                type: "button", class: `key ${kind}`, "data-key": key, onclick: () => press(key)
            }, make("span", {"aria-hidden": name ? "true" : undefined}, sign));
            if (name) { button.append(make("span", {class: name.length > 4 ? "name" : "unseen"}, name)); }
            this.buttons.set(key, button);
            element.append(button);
        }
        document.addEventListener("keydown", (event) => {
            if (!byId("keyboard").checked || event.ctrlKey || event.altKey || event.metaKey) { return; }
            if (taken(event.target, event.key)) { return; }
            const key = /^[0-9]$/.test(event.key) ? event.key : OF_KEYBOARD[event.key];
            if (key) {
                event.preventDefault();
                if (!event.repeat) { this.flash(key); press(key); }
            } else if (!event.repeat && act(event.key)) { event.preventDefault(); }
        });
    }

    // Shows on the page which key the keyboard has pressed.
    flash(key) {
        const {classList} = this.buttons.get(key);
        classList.add("pressed");
        setTimeout(() => classList.remove("pressed"), 120);
    }
}

// A button that was clicked does not keep the focus, or the keyboard's next Enter would click it again.
export function leave_focus_to_the_keyboard() {
    document.addEventListener("click", (event) => {
        const byHand = event.detail > 0 && event.target.closest("button, summary");
        if (byHand) { document.activeElement?.blur(); }
    });
}
