// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// The link to quorvel-sim: its token, requests in their order, and the stream of events.

const KEPT = "quorvel-token";
// quorvel-sim says something every ten seconds.
const SILENCE_MS = 25000;
const PAUSES_MS = [500, 1000, 2000];
export const REFUSED = "This link is not this PIN pad's (any more): open the one that quorvel-sim has printed.";

// The token leaves the address bar, as that is what people copy and show.
export function take_token() {
    const found = /(?:^#|&)token=([^&]+)/.exec(location.hash);
    // A link that is opened where the page is already changes nothing but this.
    addEventListener("hashchange", () => { if (location.hash.includes("token=")) { location.reload(); } });
    if (found) { history.replaceState(null, "", location.pathname); }
    try {
        if (found) { sessionStorage.setItem(KEPT, found[1]); }
        return sessionStorage.getItem(KEPT) ?? "";
    } catch { return found?.[1] ?? ""; }
}

class Refused extends Error {}

export class Link {
    // on.event(name, data), on.status(state, text): "connecting", "live", "lost" or "refused".
    constructor(token, on) {
        this.token = token;
        this.on = on;
        this.run = "";
        this.last = 0;
        this.queue = Promise.resolve();
    }

    fetch(path, more = {}) {
        const headers = {Authorization: `Bearer ${this.token}`, ...more.headers};
        return fetch(path, {...more, cache: "no-store", headers});
    }

    // The answer of quorvel-sim. One at a time, as digits of a PIN must not overtake each other.
    ask(request) {
        const answer = this.queue.then(() => this.post(request));
        this.queue = answer;
        return answer;
    }

    async post(request) {
        try {
            const response = await this.fetch("/api/do", {
                method: "POST", headers: {"Content-Type": "application/json"}, body: JSON.stringify(request)
            });
            if (response.status === 401) { this.refuse(); }
            return await response.json();
        } catch {
            return {ok: false, error: "quorvel-sim does not answer"};
        }
    }

    async file(path) {
        const response = await this.fetch(path);
        if (!response.ok) { throw new Error(`there is no ${path}`); }
        return response.blob();
    }

    refuse() { this.on.status("refused", REFUSED); }

    async listen() {
        for (let failures = 0;; ++failures) {
            try {
                await this.follow(() => { failures = 0; });
                this.on.status("lost", "quorvel-sim is gone. Trying again");
            } catch (error) {
                if (error instanceof Refused) { return this.refuse(); }
                this.on.status("lost", `${error.message}. Trying again`);
            }
            await new Promise((done) => setTimeout(done, PAUSES_MS[Math.min(failures, PAUSES_MS.length - 1)]));
        }
    }

    // Until the stream ends, breaks or falls silent.
    async follow(connected) {
        const silence = new AbortController();
        let timer = setTimeout(() => silence.abort(), SILENCE_MS);
        try {
            const seen = this.run ? `?run=${this.run}&after=${this.last}` : "";
            const response = await this.fetch(`/api/events${seen}`, {signal: silence.signal});
            if (response.status === 401) { throw new Refused(); }
            if (!response.ok) { throw new Error((await response.json()).error); }
            connected();
            this.on.status("live", "Connected");
            const reader = response.body.pipeThrough(new TextDecoderStream()).getReader();
            let rest = "";
            for (;;) {
                const {done, value} = await reader.read();
                if (done) { return; }
                clearTimeout(timer);
                timer = setTimeout(() => silence.abort(), SILENCE_MS);
                const events = (rest + value).split("\n\n");
                rest = events.pop();
                events.forEach((event) => this.dispatch(event));
            }
        } catch (error) {
            const broken = error instanceof TypeError || error.name === "AbortError";
            throw broken ? new Error("quorvel-sim does not answer") : error;
        } finally { clearTimeout(timer); }
    }

    dispatch(event) {
        const name = /^event: (.*)$/m.exec(event)?.[1];
        const data = /^data: (.*)$/m.exec(event)?.[1];
        if (!name || !data) { return; }
        const content = JSON.parse(data);
        if (name === "hello") {
            this.startedAnew = this.run !== "" && this.run !== content.run;
            if (this.run !== content.run) { this.last = 0; }
            this.run = content.run;
        }
        if (name === "line") { this.last = content.number; }
        this.on.event(name, content);
    }
}
