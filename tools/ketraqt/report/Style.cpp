// How a report looks: on a screen in the light and in the dark, on a phone and on paper.
#include "report/Report.h"

namespace Ketra::Tool::Report {

namespace {

// The policy of the page lets in this text alone, by its hash; the tests tell the hash of a changed one.
constexpr std::string_view kHash = "sha256-I7pvvwz4D54R80hP5UOhOhVZj507fELkJkoei2h/mFM=";

constexpr std::string_view kStyle = R"css(
:root{color-scheme:light dark;--page:#fff;--soft:#f3f5f8;--edge:#d5dae1;--ink:#1a1f26;--dim:#57606a;--link:#0b57c2;
--media:#8497ad;--header:#39475a;--error:#b3261e;--warning:#8a5a00;--noted:#1f5fb4;
--t0:#1f6fd0;--t1:#b4530a;--t2:#177a3c;--t3:#6b3fc4;--t4:#b42a77;--t5:#0a7683;--t6:#846300;--t7:#c2302b}
@media (prefers-color-scheme:dark){:root{--page:#15181d;--soft:#1d2127;--edge:#3a414b;--ink:#e8ebef;--dim:#a3adb8;
--link:#8ab8ff;--media:#64778d;--header:#c3cfdd;--error:#ff9d94;--warning:#f0bd5a;--noted:#8ab8ff;
--t0:#6aa9f7;--t1:#f0924c;--t2:#4fc17f;--t3:#b597f5;--t4:#ef7fb8;--t5:#3fc1cb;--t6:#d8b53c;--t7:#f37f78}}
.c0{--c:var(--t0)}.c1{--c:var(--t1)}.c2{--c:var(--t2)}.c3{--c:var(--t3)}
.c4{--c:var(--t4)}.c5{--c:var(--t5)}.c6{--c:var(--t6)}.c7{--c:var(--t7)}
.media{--c:var(--media)}.header{--c:var(--header)}.other{--c:var(--dim)}.unused{--c:var(--edge)}
*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%;text-size-adjust:100%}
body{margin:0 auto;max-width:1160px;padding:0 16px 48px;background:var(--page);color:var(--ink);
font:15px/1.5 system-ui,-apple-system,"Segoe UI",Roboto,"Helvetica Neue",Arial,sans-serif;overflow-wrap:anywhere}
a{color:var(--link)}
:focus-visible{outline:2px solid var(--link);outline-offset:2px}
.skip{position:absolute;left:-999px}
.skip:focus{left:16px;top:8px;background:var(--page);padding:4px 8px}
.shapes{position:absolute}
.shapes path{stroke:var(--dim);stroke-width:1.2;fill:none}
header{padding:28px 0 12px;border-bottom:1px solid var(--edge)}
h1{margin:0;font-size:26px;line-height:1.25}
header p{margin:4px 0 12px;color:var(--dim)}
nav ul,.legend{display:flex;flex-wrap:wrap;gap:4px 18px;margin:0;padding:0;list-style:none}
h2{margin:40px 0 8px;font-size:20px;line-height:1.3}
h3{margin:28px 0 8px;font-size:16px}
.intro,.note,footer{color:var(--dim);max-width:76ch}
footer{max-width:none}
.intro{margin:0 0 16px}
footer{margin-top:48px;padding-top:12px;border-top:1px solid var(--edge);font-size:13px}
dl{margin:0}dd{margin:0}dt{color:var(--dim);font-size:13px}
.facts{display:grid;grid-template-columns:repeat(auto-fill,minmax(210px,1fr));gap:12px 24px}
.tracks{display:grid;grid-template-columns:repeat(auto-fill,minmax(280px,1fr));gap:16px;margin-top:24px}
.track{border:1px solid var(--edge);border-top:4px solid var(--c,var(--edge));border-radius:6px;padding:12px 16px;
break-inside:avoid}
.track h3{margin:0 0 8px}
.track h3 span{color:var(--dim);font-weight:400}
.track dl div{display:flex;justify-content:space-between;gap:12px;padding:2px 0}
.track dt{flex:none}
.track dd{text-align:right;font-variant-numeric:tabular-nums}
.findings{margin:0;padding:0;list-style:none}
.findings li{display:flex;gap:12px;padding:10px 0;border-top:1px solid var(--edge);break-inside:avoid}
.findings svg{flex:none;margin-top:4px}
.findings p{margin:0;color:var(--dim);font-size:13px}
.findings span::before{content:"· "}
.error b{color:var(--error)}.error path{fill:var(--error)}
.warning b{color:var(--warning)}.warning path{fill:var(--warning)}
.noted b{color:var(--noted)}.noted path{fill:var(--noted)}
figure{margin:20px 0 28px;break-inside:avoid}
figcaption{margin:6px 0;font-size:13px;color:var(--dim)}
figcaption b{color:var(--ink);margin-right:8px}
i{display:inline-block;width:11px;height:11px;margin-right:6px;border-radius:2px;background:var(--c)}
.legend{margin:8px 0;font-size:13px}
.unused i{background:none;border:1px solid var(--dim)}
.graph{display:block;padding:6px 14px 0 84px;margin-top:8px;overflow:visible;font-size:12px;
font-variant-numeric:tabular-nums}
.flush .graph{padding:0}
.graph text{fill:var(--dim);text-anchor:middle}
.graph .y,.graph .e{text-anchor:end}
.flush .graph g:first-child text{text-anchor:start}
.graph line{vector-effect:non-scaling-stroke}
.ground{fill:var(--page)}
.tick{stroke:var(--edge)}
.row{stroke:var(--edge)}
.graph .label{fill:var(--ink);pointer-events:none;font-size:11.5px}
.atom{fill:var(--c);fill-opacity:.3;stroke:var(--c);stroke-width:1;vector-effect:non-scaling-stroke}
.atom.media,.atom.header{fill-opacity:.45}
.atom.unused{fill:url(#gap);fill-opacity:.6;stroke:var(--dim)}
a:hover .atom,a:focus .atom{fill-opacity:.7;stroke:var(--ink)}
a:focus-visible{outline:none}
a:focus-visible .atom{stroke:var(--link);stroke-width:3}
.area{fill:var(--c);fill-opacity:.28;stroke:var(--c);stroke-width:1.4;vector-effect:non-scaling-stroke;
stroke-linejoin:round}
.mean{stroke:var(--ink);stroke-dasharray:5 4;stroke-width:1.2}
.key{stroke:var(--c);stroke-width:1.4;vector-effect:non-scaling-stroke}
.course{fill:none;stroke:var(--c);stroke-linecap:round;stroke-linejoin:round;vector-effect:non-scaling-stroke}
.w0{stroke-width:7;stroke-opacity:.55}.w1{stroke-width:3.5}.w2,.w3{stroke-width:2}
.block{fill:var(--c);shape-rendering:crispEdges}
.edit{fill:var(--c);fill-opacity:.3;stroke:var(--c);stroke-width:1.2}
.empty{fill:url(#gap);stroke:var(--dim);stroke-width:1}
.empty+text,.unused+text{paint-order:stroke;stroke:var(--page);stroke-width:5px}
.chapter{fill:var(--dim);stroke:var(--page);stroke-width:1}
.p0{fill-opacity:.18}.p1{fill-opacity:.38}
.order{stroke:var(--c);stroke-opacity:.6}
.order.isKey{stroke-opacity:1;stroke-width:2}
.dot{fill:var(--page);stroke:var(--c);stroke-width:2}
.dot.isKey{fill:var(--c)}
.graph .order-number{font-size:10px}
table{border-collapse:collapse;width:100%;font-size:14px;font-variant-numeric:tabular-nums}
caption{text-align:left;color:var(--dim);padding:8px 0}
th{text-align:left;font-weight:600}
th,.num{white-space:nowrap;overflow-wrap:normal}
th,td{padding:4px 10px 4px 0;border-bottom:1px solid var(--edge);vertical-align:top}
.atoms th+th,.atoms td+td{text-align:right;padding-right:0;padding-left:10px;overflow-wrap:normal}
.atoms td:first-child{font-family:ui-monospace,Menlo,Consolas,monospace}
tr:target{background:var(--soft);outline:2px solid var(--link)}
.d1{padding-left:14px}.d2{padding-left:28px}.d3{padding-left:42px}.d4{padding-left:56px}.d5{padding-left:70px}
.d6{padding-left:84px}.d7{padding-left:98px}.d8{padding-left:112px}.d9{padding-left:126px}
summary{cursor:pointer;color:var(--link);padding:6px 0}
code{font-family:ui-monospace,Menlo,Consolas,monospace}
@media (max-width:700px){
.wide{display:none}
.graph{padding-left:74px;padding-right:8px;font-size:11px}
h1{font-size:21px}
.d1{padding-left:7px}.d2{padding-left:14px}.d3{padding-left:21px}.d4{padding-left:28px}.d5{padding-left:35px}
.d6{padding-left:42px}.d7{padding-left:49px}.d8{padding-left:56px}.d9{padding-left:63px}}
@media print{nav,.skip{display:none}body{max-width:none;font-size:11pt;padding:0}
*{-webkit-print-color-adjust:exact;print-color-adjust:exact}}
)css";

} // namespace

std::string_view styleSheet() { return kStyle; }
std::string_view styleHash() { return kHash; }

} // namespace Ketra::Tool::Report
