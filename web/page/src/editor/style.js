// The editor's styles, added once to the document when the view opens (the
// page's own style sheet stays the other views').
const CSS = `
.ed-layout { display: grid; grid-template-columns: minmax(0, 1fr) 340px; gap: 1rem; }
.ed-bar { display: flex; flex-wrap: wrap; gap: .4rem; align-items: center; margin: .4rem 0; }
.ed-bar button { padding: .25rem .6rem; }
.ed-file input { display: none; }
.ed-file { border: 1px solid var(--accent, #2453a6); color: var(--accent, #2453a6); border-radius: 4px;
  padding: .25rem .6rem; cursor: pointer; background: #fff; }
.ed-source { color: var(--muted, #667085); margin: .2rem 0; }
.ed-source .ed-dirty { color: #b42318; font-weight: bold; }
.ed-samples textarea { width: 100%; font-family: "Liberation Mono", monospace; font-size: 12px; }
.ed-grid { position: relative; overflow: auto; max-height: 420px; background: #fff;
  border: 1px solid var(--line, #d8dde6); font-family: "Liberation Mono", monospace; font-size: 13px;
  line-height: 18px; padding: 0 .5rem .5rem; outline: none; }
.ed-grid:focus { border-color: var(--accent, #2453a6); }
.ed-probe { position: absolute; visibility: hidden; white-space: pre; }
.ed-marks { position: sticky; top: 0; height: 20px; background: #fff; z-index: 3; }
.ed-label { position: absolute; top: 2px; height: 16px; padding: 0 2px; overflow: hidden; font-size: 10px;
  line-height: 14px; border-radius: 2px; color: #fff; background: var(--band); border: 0; text-align: left;
  white-space: nowrap; cursor: pointer; }
.ed-label.ed-constant { background: #fff; color: #1d2330; border: 1px dashed var(--band); }
.ed-ruler { position: sticky; top: 20px; margin: 0; color: #98a2b3; background: #fff; z-index: 2; }
.ed-body { position: relative; cursor: text; user-select: none; }
.ed-line { margin: 0; white-space: pre; min-height: 18px; position: relative; z-index: 1; }
.ed-bands { position: absolute; inset: 0; pointer-events: none; }
.ed-band { position: absolute; top: 0; bottom: 0; background: color-mix(in srgb, var(--band) 28%, transparent);
  border-left: 1px solid var(--band); border-right: 1px solid var(--band); }
.ed-band.ed-constant { background: transparent; border: 2px dashed var(--band); }
.ed-band.ed-selected { box-shadow: 0 0 0 2px var(--band); }
.ed-edge { position: absolute; top: 0; bottom: 0; width: 4px; pointer-events: auto; cursor: ew-resize; z-index: 2; }
.ed-start { left: -2px; } .ed-end { right: -2px; }
.ed-edge-start .ed-start, .ed-edge-end .ed-end, .ed-edge-band .ed-edge { background: var(--band); }
.ed-drag { position: absolute; background: rgba(36, 83, 166, .25); outline: 1px solid #2453a6; pointer-events: none; z-index: 2; }
.ed-translation h2, .ed-side h2 { font-size: 1rem; margin: .8rem 0 .3rem; }
.ed-preview { overflow: auto; max-height: 360px; background: #fff; border: 1px solid var(--line, #d8dde6);
  font-family: "Liberation Mono", monospace; font-size: 12px; padding: .3rem .5rem; }
.ed-row, .ed-reason { margin: 0; white-space: pre; }
.ed-head { color: #667085; }
.ed-unrecognised, .ed-damaged, .ed-failed { background: #fff4e0; color: #9a6700; }
.ed-failed { background: #fde8e6; color: #b42318; }
.ed-reason { color: #b42318; }
.ed-side select, .ed-side input, .ed-side textarea { width: 100%; }
.ed-settings label, .ed-armed label, .ed-cable label { display: grid; gap: .15rem; font-size: .85rem; margin-bottom: .4rem; }
.ed-hint { font-size: .8rem; color: var(--muted, #667085); margin: .2rem 0; }
.ed-entries table { border-collapse: collapse; width: 100%; font-size: .85rem; }
.ed-entries td, .ed-entries th { padding: .1rem .25rem; border-bottom: 1px solid var(--line, #d8dde6); }
.ed-entries tr.ed-selected { background: #eef3fc; }
.ed-entries select, .ed-entries input { width: auto; padding: 0 .2rem; }
.ed-entries td button { padding: 0 .4rem; }
.ed-entries button.link { background: none; border: 0; color: var(--accent, #2453a6); padding: 0; }
.ed-swatch { display: inline-block; width: 10px; height: 10px; background: var(--band); }
.ed-cuts ol { font-family: "Liberation Mono", monospace; font-size: 12px; margin: .2rem 0; }
.ed-pins { border-collapse: collapse; font-size: .75rem; }
.ed-pins td, .ed-pins th { padding: 0 .1rem; text-align: center; }
.ed-pins input { width: auto; }
.ed-drawing img { max-width: 100%; background: #fff; border: 1px solid var(--line, #d8dde6); }
@media (max-width: 900px) { .ed-layout { grid-template-columns: 1fr; } }
`;

export function addEditorStyle() {
  if (document.getElementById('editor-style')) return;
  const style = document.createElement('style');
  style.id = 'editor-style';
  style.textContent = CSS;
  document.head.append(style);
}
