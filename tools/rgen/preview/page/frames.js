// SPDX-License-Identifier: MIT
// Two frames: the next page loads invisibly in one while the other shows the last. Nothing runs inside
// them; clicks are handled from here.

const frames = [...document.querySelectorAll("iframe")];
const stage = document.getElementById("stage");
let front = 0;
let shown = { page: 0, format: "" };
const positions = new Map();

function loaded(frame, address) {
  return new Promise((resolve) => {
    frame.addEventListener("load", resolve, { once: true });
    // Replaces, so that the browser's "back" does not lead through old pages.
    frame.contentWindow.location.replace(new URL(address, document.baseURI));
  });
}

function painted() {
  return new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve)));
}

function rememberPosition() {
  const view = frames[front].contentWindow;
  positions.set(shown.format, [view.scrollX, view.scrollY]);
}

function followClicks(frame, format, onPlace) {
  frame.contentDocument.addEventListener("click", (event) => {
    const link = event.target.closest("a[href]");
    if (link && !link.getAttribute("href").startsWith("#")) event.preventDefault();
    const element = event.target.closest("[data-rgen-place]");
    if (!element) return;
    const [line, column] = element.dataset.rgenPlace.split(":");
    onPlace({ format, line, column });
  }, true);
}

// Shows a page of a format; resolves when it is on the screen.
export async function showPage(page, format, onPlace) {
  if (page === shown.page) return;
  const next = frames[1 - front];
  await loaded(next, `files/?page=${page}`);
  followClicks(next, format, onPlace);
  if (shown.page) rememberPosition();
  const [x, y] = positions.get(format) ?? [0, 0];
  next.contentWindow.scrollTo({ left: x, top: y, behavior: "instant" });
  frames[front].classList.remove("shown");
  next.classList.add("shown");
  front = 1 - front;
  shown = { page, format };
  await painted();
}

export function setStale(isStale) {
  stage.classList.toggle("stale", isStale);
}

export function setWidth(width) {
  stage.dataset.width = width;
}
