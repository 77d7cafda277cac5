#ifndef GPS_DECODE_REPORT_STYLE_H
#define GPS_DECODE_REPORT_STYLE_H

namespace decode {

/** The style of a report: light or dark as the browser is set, always light on paper. */
inline constexpr char kStyle[] = R"(
:root{color-scheme:light dark;--bg:#fff;--fg:#1b1f24;--dim:#5d6670;--grid:#d5dae0;--line:#1f6fb2;--good:#4c9a6a;--warn:#e0a32e;
--bad:#c8402f;--s1:#dfe3e8;--s2:#b5d3ec;--s3:#6baed6;--s4:#2171b5;--s5:#08306b;--G:#1f6fb2;--R:#c8402f;--E:#2c8a57;--C:#b3700b;--O:#7b52ab}
@media screen and (prefers-color-scheme:dark){:root{--bg:#14181d;--fg:#e4e8ec;--dim:#9aa4af;--grid:#333b45;--line:#6cb4ee;
--good:#5fb783;--warn:#e3b04b;--bad:#ec6a58;--s1:#2b323b;--s2:#1d4a75;--s3:#2f7fc1;--s4:#7cbcec;--s5:#e3f1fd;--G:#6cb4ee;--R:#ec6a58;
--E:#62c48f;--C:#e3a648;--O:#b794e6}}
*{box-sizing:border-box}
body{margin:0 auto;padding:1rem;max-width:76rem;background:var(--bg);color:var(--fg);font:15px/1.45 system-ui,sans-serif;
print-color-adjust:exact;-webkit-print-color-adjust:exact}
h1{font-size:1.5rem;margin:0;overflow-wrap:anywhere}
h2{font-size:1.05rem;margin:1.6rem 0 .4rem}
p{margin:.2rem 0}
.dim,figcaption,th{color:var(--dim);font-weight:normal;font-size:.85rem}
dl{display:grid;grid-template-columns:repeat(auto-fit,minmax(8rem,1fr));gap:.8rem;margin:1rem 0}
dt{color:var(--dim);font-size:.85rem}
dd{margin:0;font-size:1.25rem;font-variant-numeric:tabular-nums}
dd small{font-size:.85rem;color:var(--dim)}
.pair{display:grid;grid-template-columns:minmax(0,3fr) minmax(0,2fr);gap:1.5rem}
figure{margin:0}
svg{display:block;width:100%}
svg text{fill:var(--dim);font:7px system-ui,sans-serif;text-anchor:middle;dominant-baseline:central;paint-order:stroke;
stroke:var(--bg);stroke-width:2px;stroke-linejoin:round}
.box{fill:none;stroke:var(--grid)}
.grid{fill:none;stroke:var(--grid);vector-effect:non-scaling-stroke}
.line{fill:none;stroke:var(--line);stroke-width:1.5;stroke-linejoin:round;stroke-linecap:round;vector-effect:non-scaling-stroke}
.dash{fill:none;stroke:var(--bad);stroke-width:1.2;stroke-dasharray:4 4;vector-effect:non-scaling-stroke}
.mark{stroke:var(--dim);stroke-dasharray:2 3;vector-effect:non-scaling-stroke}
.lost{fill:var(--bad);opacity:.18}
.begin{fill:var(--good)}.end{fill:var(--bad)}
.path{fill:none;stroke-width:1.2;stroke-linejoin:round;stroke-linecap:round}
.row{display:grid;grid-template-columns:4.2rem minmax(0,1fr);align-items:stretch}
.row>div{position:relative}
.label{font-size:.75rem;line-height:14px;color:var(--dim);white-space:nowrap;font-variant-numeric:tabular-nums}
.y span{position:absolute;right:.4rem;transform:translateY(-50%);font-size:.75rem;color:var(--dim)}
.x{height:1.5rem}
.x span{position:absolute;top:.3rem;transform:translateX(-50%);font-size:.75rem;color:var(--dim);white-space:nowrap}
.chart svg{height:7rem;overflow:visible}
.strip svg{height:14px;border-bottom:2px solid var(--bg);shape-rendering:crispEdges}
.s1{fill:var(--s1)}.s2{fill:var(--s2)}.s3{fill:var(--s3)}.s4{fill:var(--s4)}.s5{fill:var(--s5)}
.good{fill:var(--good)}.fair{fill:var(--s3)}.warn{fill:var(--warn)}.bad{fill:var(--bad)}
.legend span{white-space:nowrap;margin-right:1em}
.key{display:inline-block;width:.8em;height:.8em;margin:0 .35em 0 0}
table{border-collapse:collapse;width:100%;font-size:.9rem}
th,td{text-align:left;padding:.2rem .8rem .2rem 0;border-bottom:1px solid var(--grid);vertical-align:top;overflow-wrap:anywhere}
td.n,th.n{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}
td.t{white-space:nowrap;font-variant-numeric:tabular-nums}
@media (max-width:46rem){.pair{grid-template-columns:minmax(0,1fr)}.row{grid-template-columns:3.4rem minmax(0,1fr)}
.x span:nth-child(even){display:none}td.t{white-space:normal}}
@media print{body{padding:0;font-size:10pt}h2{break-after:avoid}figure,.chart,.strip,tr{break-inside:avoid}}
)";

}  // namespace decode

#endif
