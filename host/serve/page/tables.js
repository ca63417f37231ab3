// Tables of the page, patched in place: an edit rewrites only the cells whose text moved, so a
// keystroke costs a few text changes rather than new tables for the browser to lay out again.
"use strict";

function element(tag, attrs = {}, ...children) {
  const node = document.createElement(tag);
  for (const [k, v] of Object.entries(attrs)) {
    if (k.startsWith("on")) node.addEventListener(k.slice(2), v);
    else node.setAttribute(k, v);
  }
  for (const c of children) node.append(c);
  return node;
}

// `rows`: arrays of cell texts; `classes`: a class per row ("" for none), such as "over" for a row
// beyond its limit. The head is rebuilt only when it changes, a row only when the row count does; a
// caption stays.
function table(node, head, rows, classes = []) {
  const headKey = head.join("\u0000");
  if (node.dataset.head !== headKey || node.rows.length !== rows.length + 1) {
    node.dataset.head = headKey;
    node.replaceChildren(...(node.caption ? [node.caption] : []), element("tr", {}, ...head.map((h) => element("th", {}, h))),
      ...rows.map(() => element("tr", {}, ...head.map(() => element("td")))));
  }
  rows.forEach((cells, i) => {
    const row = node.rows[i + 1];
    const wanted = classes[i] || "";
    if (row.className !== wanted) row.className = wanted;
    cells.forEach((text, j) => {
      const cell = row.cells[j];
      if (cell && cell.textContent !== text) cell.textContent = text;
    });
  });
}

// A figure with `digits` decimals, "-" for none (null: the report has no such figure).
function fixed(value, digits) {
  return value === null || value === undefined || Number.isNaN(Number(value)) ? "-" : Number(value).toFixed(digits);
}
