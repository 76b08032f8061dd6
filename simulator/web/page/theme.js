// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// Dark and light: as the system has it, until the switch says otherwise.
import {say} from "./dom.js";

const KEPT = "quorvel-theme";
const NEXT = {system: "light", light: "dark", dark: "system"};

// Where storage is forbidden, the switch still works until the page is left.
function kept() {
    try { return localStorage.getItem(KEPT); } catch { return null; }
}

function keep(theme) {
    try { localStorage.setItem(KEPT, theme); } catch { /* until the page is left */ }
}

export function switch_theme(button) {
    let theme = kept() in NEXT ? kept() : "system";
    const show = () => {
        document.documentElement.dataset.theme = theme;
        say(button, `Theme: ${theme}`);
    };
    button.addEventListener("click", () => {
        theme = NEXT[theme];
        keep(theme);
        show();
    });
    show();
}
