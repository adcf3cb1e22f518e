#pragma once

namespace tonewright {

/// The report's style sheet: light or dark as the reader's system is, one column on a telephone, two on a screen, black
/// on white on paper. Text keeps a contrast of at least 4.5 to 1 on its ground.
inline constexpr const char* kPageStyle = R"css(
:root { color-scheme: light dark; --ground: #ffffff; --panel: #f4f5f7; --text: #1b1e23; --soft: #555b66;
  --line: #d5d8de; --accent: #1f5fbf; --bad: #b3261e; --warn: #8a5a00; --good: #1b6e35; --edge: #7a808b; }
@media (prefers-color-scheme: dark) { :root { --ground: #16181c; --panel: #1f2228; --text: #e8eaee; --soft: #a9b0bb;
  --line: #3a3f48; --accent: #8ab4f8; --bad: #ff9d94; --warn: #f2c063; --good: #7fd69a; --edge: #8b929e; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--ground); color: var(--text); font: 15px/1.5 system-ui, "DejaVu Sans", sans-serif; }
main { max-width: 1080px; margin: 0 auto; padding: 20px 16px 40px; }
h1 { font-size: 1.5em; line-height: 1.25; margin: 0 0 2px; overflow-wrap: anywhere; }
h2 { font-size: 1.12em; margin: 30px 0 10px; padding-bottom: 4px; border-bottom: 1px solid var(--line); }
p { margin: 6px 0; }
.soft { color: var(--soft); overflow-wrap: anywhere; }
.figures { display: grid; grid-template-columns: repeat(auto-fit, minmax(150px, 1fr)); gap: 10px; margin: 16px 0 4px; }
.figure { background: var(--panel); border: 1px solid var(--line); border-radius: 8px; padding: 10px 14px; }
.figure b { display: block; font-size: 1.9em; line-height: 1.2; font-weight: 650; font-variant-numeric: tabular-nums; }
.figure.first b { color: var(--accent); }
.figure span { color: var(--soft); font-size: .92em; }
.findings { list-style: none; margin: 0; padding: 0; }
.findings li { border-left: 4px solid var(--edge); background: var(--panel); padding: 8px 12px; margin: 6px 0;
  overflow-wrap: anywhere; }
.findings .error { border-color: var(--bad); } .findings .warning { border-color: var(--warn); }
.findings .error strong { color: var(--bad); } .findings .warning strong { color: var(--warn); }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 330px), 1fr)); gap: 14px; }
figure { margin: 0; background: var(--panel); border: 1px solid var(--line); border-radius: 8px; padding: 8px; }
figcaption { color: var(--soft); font-size: .92em; padding: 4px 4px 0; }
figure h3 { font-size: 1em; margin: 2px 4px 6px; }
svg { display: block; width: 100%; height: auto; }
.patches { display: grid; grid-template-columns: repeat(var(--columns, 6), minmax(0, 1fr)); gap: 8px; margin: 0; padding: 0;
  list-style: none; }
.patches li { border: 1px solid var(--line); border-radius: 6px; overflow: hidden; background: var(--panel); }
.patches li.worst { outline: 3px solid var(--bad); }
.swatch { display: grid; grid-template-columns: 1fr 1fr 1fr; height: 48px; border-bottom: 1px solid var(--line);
  print-color-adjust: exact; -webkit-print-color-adjust: exact; }
.patches p { margin: 0; padding: 3px 7px; font-size: .84em; line-height: 1.35; overflow-wrap: anywhere; }
.patches b { font-variant-numeric: tabular-nums; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; font-size: .93em; }
th, td { text-align: right; padding: 4px 8px; border-bottom: 1px solid var(--line); }
th:first-child, td:first-child { text-align: left; }
td.name { text-align: left; overflow-wrap: anywhere; }
thead th { color: var(--soft); font-weight: 600; }
tr.chosen td { font-weight: 650; color: var(--accent); }
table.settings td { text-align: left; } table.settings td:first-child { color: var(--soft); width: 12em; }
.plot rect, .plot circle { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
.chart polygon { fill: none; stroke: #ffffff; stroke-width: 2; vector-effect: non-scaling-stroke; }
.chart polygon.shade { stroke: #000000; stroke-width: 4; }
.chart polygon.worst { stroke: #ff3b30; stroke-width: 4; }
@media (max-width: 620px) { .patches { grid-template-columns: repeat(min(3, var(--columns, 6)), minmax(0, 1fr)); } }
@page { size: A4; margin: 14mm; }
@media print { :root { --ground: #ffffff; --panel: #ffffff; --text: #000000; --soft: #444a52; --line: #c8ccd2;
  --accent: #1f5fbf; --bad: #b3261e; --warn: #8a5a00; --edge: #6b7078; }
  body { font-size: 10.5pt; } main { max-width: none; padding: 0; } .pair { grid-template-columns: 1fr 1fr; }
  figure, .figure, .patches li, tr, .findings li { break-inside: avoid; } h2 { break-after: avoid; }
  .figures { grid-template-columns: repeat(4, 1fr); } .swatch { height: 34px; } }
)css";

}  // namespace tonewright
