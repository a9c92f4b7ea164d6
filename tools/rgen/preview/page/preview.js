// SPDX-License-Identifier: MIT
// Shows the report that is wanted, again after each change of a file.

import { setStale, setWidth, showPage } from "./frames.js";
import { showMistakes, showNotes, showPlace, showStatus } from "./messages.js";
import { currentFormat, currentWidth, followToolbar, showChoices, viewQuery } from "./toolbar.js";

let isRunning = false;
let isOutdated = false;
let count = 0;

async function answer(path) {
  const response = await fetch(path, { headers: { "X-Rgen-Preview": "script" } });
  return response.json();
}

async function openPlace(place) {
  showPlace(await answer(`place?${new URLSearchParams({ ...place, open: "1" })}`));
}

async function showView() {
  const format = currentFormat();
  setWidth(currentWidth());
  const view = await answer(`view?${viewQuery()}`);
  showChoices(view);
  showMistakes(view.ok ? [] : view.mistakes);
  showNotes(view.notes);
  setStale(!view.ok);
  if (view.page) await showPage(view.page, format, openPlace);
  showStatus(view.ok ? `${view.milliseconds.toFixed(1)} ms` : "the last good report");
  // For tests and measurements.
  document.body.dataset.shown = String(++count);
}

// One view at a time; a change during that time leads to one more.
async function update() {
  isOutdated = true;
  if (isRunning) return;
  isRunning = true;
  try {
    while (isOutdated) {
      isOutdated = false;
      await showView();
    }
  } catch (error) {
    showStatus(`rgen does not answer: ${error.message}`, "lost");
  } finally {
    isRunning = false;
  }
}

const events = new EventSource("events");
events.addEventListener("message", update);
events.addEventListener("error", () => showStatus("rgen has ended", "lost"));
followToolbar(update);
