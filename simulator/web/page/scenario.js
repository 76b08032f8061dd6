// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The scenario's steps and expectations as they pass or fail.
import {byId, make, unseen} from "./dom.js";

const SIGNS = {done: "✓", now: "▸", due: "○", failed: "✕"};

function item({line, words, status}) {
    return make("li", {class: status, "aria-current": status === "now" ? "step" : undefined},
        make("span", {class: "sign", "aria-hidden": "true"}, SIGNS[status] ?? ""), make("code", {}, words),
        make("span", {class: "where"}, `line ${line}`), unseen(`, ${status}`));
}

export function show_scenario(scenario) {
    byId("scenario").hidden = scenario === null;
    if (scenario === null) { return; }
    const {file, title, steps, expectations, complaints} = scenario;
    const body = byId("scenario-body");
    body.replaceChildren(make("p", {}, make("b", {}, title), " ", make("span", {class: "where"}, file)));
    if (complaints.length > 0) {
        body.append(make("ul", {class: "complaints"}, ...complaints.map((words) => make("li", {}, words))));
    }
    for (const [name, list] of [["The cardholder", steps], ["The till has to", expectations]]) {
        if (list.length > 0) { body.append(make("h3", {}, name), make("ol", {class: "steps"}, ...list.map(item))); }
    }
}
