// SPDX-License-Identifier: MIT
// What is wanted: format, language, data and width. It is kept in the address, so that a reload shows
// the same.

const lang = document.getElementById("lang");
const data = document.getElementById("data");
const width = document.getElementById("width");
const formats = document.getElementById("formats");
const pdf = document.getElementById("pdf");

const given = new URLSearchParams(location.hash.slice(1));
const wanted = {
  format: given.get("format") ?? "html",
  lang: given.get("lang") ?? "",
  data: given.get("data") ?? "",
  width: given.get("width") ?? "window",
};

function option(value, text) {
  const made = document.createElement("option");
  made.value = value;
  made.textContent = text;
  return made;
}

function fill(select, options, value) {
  if (document.activeElement !== select || select.options.length !== options.length) {
    select.replaceChildren(...options.map(([id, title]) => option(id, title)));
  }
  select.value = value;
}

function tab(format) {
  const made = document.createElement("button");
  made.type = "button";
  made.textContent = format;
  made.dataset.format = format;
  made.setAttribute("aria-pressed", String(format === wanted.format));
  return made;
}

export function viewQuery() {
  return new URLSearchParams({ format: wanted.format, lang: wanted.lang, data: wanted.data });
}

export function currentFormat() {
  return wanted.format;
}

export function currentWidth() {
  return wanted.width;
}

export function showChoices(view) {
  document.getElementById("type").textContent = view.type;
  document.title = `${view.type} - rgen preview`;
  formats.replaceChildren(...view.formats.map(tab));
  fill(lang, [["", "as in the template"], ...view.languages.map((each) => [each, each])],
       wanted.lang);
  fill(data, view.data.map((each) => [each.id, each.title]), wanted.data || view.data[0].id);
  width.value = wanted.width;
  pdf.hidden = wanted.format !== "pdf";
  pdf.href = `pdf?${viewQuery()}`;
}

// Calls onChange after each change by the user.
export function followToolbar(onChange) {
  const change = (name, value) => {
    wanted[name] = value;
    history.replaceState(null, "", `#${new URLSearchParams(wanted)}`);
    onChange();
  };
  for (const select of [lang, data, width]) {
    select.addEventListener("change", () => change(select.id, select.value));
  }
  formats.addEventListener("click", (event) => {
    const format = event.target.dataset.format;
    if (format) change("format", format);
  });
}
