// The page's pictures as plain SVG: bars by name, and a line with an optional marked point.
"use strict";

const SVG = "http://www.w3.org/2000/svg";
function svg(tag, attrs, text) {
  const node = document.createElementNS(SVG, tag);
  for (const [k, v] of Object.entries(attrs)) node.setAttribute(k, v);
  if (text !== undefined) node.textContent = text;
  return node;
}

// Horizontal bars, one per name, scaled to the largest. The same names as last time move the bars
// already drawn; other names draw them anew.
function bars(node, items) {
  const width = 350, row = 16, left = 90, room = width - left - 60;
  const top = Math.max(...items.map(([, v]) => v), 1e-12);
  const key = items.map(([name]) => name).join("\u0000");
  if (node.dataset.names !== key) {
    node.dataset.names = key;
    node.setAttribute("viewBox", `0 0 ${width} ${Math.max(1, items.length) * row + 4}`);
    node.style.height = `${(items.length * row + 4) / 16}rem`;
    node.replaceChildren(...items.flatMap(([name], i) => [
      svg("text", { x: left - 4, y: i * row + 12, "text-anchor": "end" }, name),
      svg("rect", { x: left, y: i * row + 2, height: row - 4, width: 0, fill: "#3b6fb6" }),
      svg("text", { x: left, y: i * row + 12 }, ""),
    ]));
  }
  items.forEach(([, value], i) => {
    const length = Math.max(0, (value / top) * room);
    const rect = node.children[3 * i + 1], label = node.children[3 * i + 2];
    rect.setAttribute("width", length);
    label.setAttribute("x", left + length + 3);
    const text = value.toFixed(3);
    if (label.textContent !== text) label.textContent = text;
  });
}

// `points`: [x, y] pairs in order; `mark`: an [x, y] drawn as a dot with its figures, or null. The
// axes take in the mark too, so a point beyond the curve's range still shows.
function lineChart(title, points, mark = null) {
  const w = 350, h = 170, l = 55, b = 20, t = 8;
  const xs = points.map((p) => Number(p[0])), ys = points.filter((p) => p[1] !== null).map((p) => p[1]);
  const numericX = xs.every((v) => Number.isFinite(v));
  if (mark && numericX) { xs.push(mark[0]); ys.push(mark[1]); }
  const x0 = numericX ? Math.min(...xs) : 0, x1 = numericX ? Math.max(...xs) : points.length - 1;
  const y0 = Math.min(...ys), y1 = Math.max(...ys);
  const sx = (v, i) => l + ((numericX ? v : i) - x0) / (x1 - x0 || 1) * (w - l - 10);
  const sy = (v) => h - b - (v - y0) / (y1 - y0 || 1) * (h - b - t);
  const path = points.map((p, i) => (p[1] === null ? null : `${sx(Number(p[0]), i)},${sy(p[1])}`)).filter(Boolean).join(" ");
  const chart = svg("svg", { viewBox: `0 0 ${w} ${h}`, role: "img" });
  chart.append(
    svg("line", { x1: l, y1: h - b, x2: w - 10, y2: h - b, stroke: "#889" }),
    svg("line", { x1: l, y1: t, x2: l, y2: h - b, stroke: "#889" }),
    svg("text", { x: l - 4, y: t + 8, "text-anchor": "end" }, y1.toPrecision(4)),
    svg("text", { x: l - 4, y: h - b, "text-anchor": "end" }, y0.toPrecision(4)),
    svg("text", { x: l, y: h - 4 }, String(numericX ? x0 : points[0][0])),
    svg("text", { x: w - 10, y: h - 4, "text-anchor": "end" }, String(numericX ? x1 : points[points.length - 1][0])),
    svg("polyline", { points: path, fill: "none", stroke: "#c0392b", "stroke-width": 1.5 }));
  if (mark && numericX) {
    const [cx, cy] = [sx(mark[0]), sy(mark[1])];
    chart.append(svg("circle", { cx, cy, r: 4, fill: "#24324a", class: "mark" }),
      svg("text", { x: cx + (cx > w / 2 ? -6 : 6), y: cy - 6, "text-anchor": cx > w / 2 ? "end" : "start" },
        `${mark[0].toFixed(1)} °C, ${mark[1].toFixed(3)}`));
  }
  return element("figure", {}, element("figcaption", {}, title), chart);
}
