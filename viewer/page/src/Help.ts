// The keys, in one place: what they do and what the help panel says of them.

export interface Key {
  keys: string[]; // as KeyboardEvent.key has them
  shown: string;
  text: string;
  act: () => void;
}

const kNames: Record<string, string> = { " ": "Space", ArrowLeft: "←", ArrowRight: "→" };

export function fillHelp(dialog: HTMLDialogElement, keys: Key[]): void {
  dialog.replaceChildren();
  dialog.appendChild(document.createElement("h2")).textContent = "Keys and pointer";
  const table = dialog.appendChild(document.createElement("table"));
  const row = (names: string[], text: string): void => {
    const line = table.insertRow();
    const cell = line.insertCell();
    names.forEach((name, i) => {
      if (i > 0) cell.append(" ");
      cell.appendChild(document.createElement("kbd")).textContent = name;
    });
    line.insertCell().textContent = text;
  };
  for (const { shown, keys: codes, text } of keys) {
    row(shown ? shown.split(" ") : codes.map((code) => kNames[code] ?? code.toUpperCase()), text);
  }
  row(["Drag"], "Turn the camera; with the right button or two fingers, move it");
  row(["Wheel"], "Nearer and farther");
  row(["Double click"], "Choose the player there, and follow it");
  const form = dialog.appendChild(document.createElement("form"));
  form.method = "dialog";
  const close = form.appendChild(document.createElement("button"));
  close.textContent = "Close";
}

// Runs what the key stands for; fields keep their own keys.
export function onKey(event: KeyboardEvent, keys: Key[]): void {
  if (event.ctrlKey || event.metaKey || event.altKey || document.querySelector("dialog[open]")) return;
  const at = event.target as HTMLElement;
  const isRange = at instanceof HTMLInputElement && at.type === "range";
  if (!isRange && at.matches("input, select, textarea")) return;
  if (at instanceof HTMLButtonElement && (event.key === " " || event.key === "Enter")) return;
  const found = keys.find((key) => key.keys.includes(event.key));
  if (!found) return;
  event.preventDefault();
  found.act();
}
