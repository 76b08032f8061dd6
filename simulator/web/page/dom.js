// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// Making and changing elements. Data becomes text always, never markup.

export const byId = (id) => document.getElementById(id);

// make("li", {class: "done", disabled: true, onclick: f}, "text", element, ...)
export function make(tag, properties = {}, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(properties)) {
        if (typeof value === "function") {
            element.addEventListener(name.slice(2), value);
        } else if (value === true) {
            element.setAttribute(name, "");
        } else if (value !== false && value !== undefined && value !== null) {
            element.setAttribute(name, value);
        }
    }
    element.append(...children);
    return element;
}

// Screen readers tell what has changed, so what has not is left alone.
export function say(element, text) {
    if (element.textContent !== text) { element.textContent = text; }
}

export const unseen = (text) => make("span", {class: "unseen"}, text);

export function options(select, values) {
    select.replaceChildren(...values.map(([value, text]) => make("option", {value}, text)));
}
