// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// Brings the parts of the page together. What comes from quorvel-sim is shown once for each frame of the browser: of a
// part's snapshots the newest, of the lines all.
import {Display} from "./display.js";
import {byId, say} from "./dom.js";
import {Faults} from "./faults.js";
import {Findings} from "./findings.js";
import {Keypad, leave_focus_to_the_keyboard} from "./keypad.js";
import {Link, REFUSED, take_token} from "./link.js";
import {Plans} from "./plans.js";
import {show_scenario} from "./scenario.js";
import {StatePanel} from "./state.js";
import {switch_theme} from "./theme.js";
import {MOST_LINES, Traffic} from "./traffic.js";
import {Tray} from "./tray.js";

const NOTICE_MS = 6000;

const link = new Link(take_token(), {event, status});
const display = new Display(link);
const traffic = new Traffic();
const findings = new Findings();
const tray = new Tray(use, remark);
const state = new StatePanel(use);
const faults = new Faults(use);
const plans = new Plans(use);
new Keypad((key) => use({do: "press", key}), act);

const SHOW = {
    hello(hello) {
        [display, state, faults, plans].forEach((part) => part.hello(hello));
        if (link.startedAnew) {
            traffic.clear();
            findings.forget();
            traffic.remark("quorvel-sim was started anew");
        }
    },
    screen: (content) => display.show(content),
    state(content) {
        state.state(content);
        tray.state(content);
    },
    cards(content) {
        tray.set(content);
        plans.set_cards(content);
    },
    session: (content) => state.session(content),
    tables: (content) => state.tables(content),
    faults: (content) => faults.show(content),
    plans: (content) => plans.show(content),
    findings: (content) => findings.show(content),
    scenario: show_scenario
};

let snapshots = new Map();
let lines = [];
let due = false;

function event(name, content) {
    if (name === "line") {
        lines.push(content);
        // A page in the background is not drawn, but goes on listening.
        if (lines.length > 2 * MOST_LINES) { lines.splice(0, MOST_LINES); }
    } else if (name === "missed") {
        lines.push({words: `${content.count} lines were skipped, as this browser was too slow`});
    } else if (name === "hello") {
        flush();
        SHOW.hello(content);
    } else { snapshots.set(name, content); }
    if (!due) {
        due = true;
        requestAnimationFrame(flush);
    }
}

function flush() {
    due = false;
    const [parts, fresh] = [snapshots, lines];
    snapshots = new Map();
    lines = [];
    for (const [name, content] of parts) { SHOW[name]?.(content); }
    if (fresh.length > 0) { traffic.add(fresh.slice(-MOST_LINES)); }
}

function status(kind, words) {
    const element = byId("link");
    element.dataset.link = kind;
    say(element, kind === "refused" ? "Not connected" : words);
    document.body.classList.toggle("off", kind !== "live");
    if (kind === "refused") { notice(words, true); }
}

let noticeTimer = 0;

function notice(words, stays = false) {
    clearTimeout(noticeTimer);
    say(byId("notice"), words);
    byId("notice").hidden = false;
    if (!stays) { noticeTimer = setTimeout(() => { byId("notice").hidden = true; }, NOTICE_MS); }
}

// What became of the last thing that was done here.
function remark(words) { say(byId("said"), words); }

// Whether it was done; if not, the reason stands at the top.
async function use(request, words) {
    const answer = await link.ask(request);
    if (!answer.ok && byId("link").dataset.link !== "refused") { notice(answer.error); }
    if (answer.ok && words) { remark(words); }
    return answer.ok;
}

function act(key) {
    if (key === "/") {
        byId("search").focus();
        return true;
    }
    return tray.act(key);
}

async function download() {
    try {
        const anchor = document.createElement("a");
        anchor.href = URL.createObjectURL(await link.file("/api/recording"));
        anchor.download = "session.rec";
        anchor.click();
        setTimeout(() => URL.revokeObjectURL(anchor.href), NOTICE_MS);
    } catch { notice("There is no recording"); }
}

byId("recording").addEventListener("click", download);
byId("clear-findings").addEventListener("click", () => use({do: "clear-findings"}, "Findings forgotten"));
switch_theme(byId("theme"));
leave_focus_to_the_keyboard();
if (link.token === "") { status("refused", REFUSED); } else { link.listen(); }
