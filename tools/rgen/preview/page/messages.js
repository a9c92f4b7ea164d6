// SPDX-License-Identifier: MIT
// Mistakes over the report, places and notes below it. Texts are never markup here.

const panel = document.getElementById("mistakes");

function element(name, className, text) {
  const made = document.createElement(name);
  made.className = className;
  made.textContent = text;
  return made;
}

function placeText(mistake) {
  return mistake.line ? `${mistake.file}:${mistake.line}:${mistake.column}` : mistake.file;
}

function mistakeLine(mistake) {
  const line = element("p", mistake.severity, "");
  if (mistake.file) line.append(element("span", "at", placeText(mistake)), ": ");
  line.append(element("strong", "", mistake.severity), `: ${mistake.what}`);
  if (mistake.advice) line.append(`; ${mistake.advice}`);
  return line;
}

export function showMistakes(mistakes) {
  panel.replaceChildren();
  for (const mistake of mistakes) {
    panel.append(mistakeLine(mistake));
    if (mistake.excerpt) panel.append(element("pre", "", mistake.excerpt));
  }
  panel.hidden = mistakes.length === 0;
}

export function showNotes(notes) {
  document.getElementById("notes").replaceChildren(
    ...notes.map((note) => element("li", "", note)));
}

export function showPlace(place) {
  const isKnown = place.ok;
  document.getElementById("place").textContent =
    isKnown ? `${place.file}:${place.line}:${place.column}` : place.message;
  document.getElementById("source").textContent = isKnown ? place.source : "";
}

export function showStatus(text, state = "") {
  const status = document.getElementById("status");
  status.textContent = text;
  status.dataset.state = state;
}
