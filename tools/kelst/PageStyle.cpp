#include "tools/kelst/PageStyle.h"

#include "tools/kelst/MapDrawing.h"

namespace kelst {

namespace {

constexpr std::string_view kPageRules = R"(
:root{color-scheme:light dark;--text:#1c2430;--dim:#5d6875;--line:#d8dde3;--back:#fff;
--stripe:#f6f8fa;--error:#b80f20;--warning:#8a5300;--good:#17603a}
@media screen and (prefers-color-scheme:dark){:root{--text:#e4e8ee;--dim:#9aa5b3;--line:#343c46;
--back:#14171c;--stripe:#1a1f25;--error:#ff6b7a;--warning:#f0b35a;--good:#69c98f}}
*{box-sizing:border-box}
body{max-width:1040px;margin:0 auto;padding:24px 20px 48px;background:var(--back);
color:var(--text);font:15px/1.5 system-ui,"DejaVu Sans",sans-serif}
h1{font-size:26px;line-height:1.25;margin:0 0 4px;overflow-wrap:anywhere}
h2{font-size:19px;margin:36px 0 10px;padding-bottom:4px;border-bottom:1px solid var(--line)}
h3{font-size:16px;margin:24px 0 6px;overflow-wrap:anywhere}
p{margin:6px 0}
nav a{margin-right:16px}
a{color:inherit}
.lead{font-size:17px}
.dim,caption{color:var(--dim)}
.error{color:var(--error)}
.warning{color:var(--warning)}
.clean{color:var(--good)}
.error,.warning,.clean{font-weight:600}
table{width:100%;border-collapse:collapse;margin:8px 0}
caption{text-align:left;padding:4px 0}
th,td{text-align:left;vertical-align:top;padding:3px 16px 3px 0;
border-bottom:1px solid var(--line);overflow-wrap:anywhere}
thead th{font-weight:600;color:var(--dim)}
tbody th{font-weight:400;color:var(--dim);white-space:nowrap}
tbody tr:nth-child(even){background:var(--stripe)}
.number{text-align:right;white-space:nowrap;font-variant-numeric:tabular-nums}
.facts th{width:9em}
.properties,.findings{table-layout:fixed}
.findings th:nth-child(1){width:38%}
.findings th:nth-child(2){width:22%}
.properties th:nth-child(1){width:5em}
.properties th:nth-child(2){width:24%}
.properties th:nth-child(3){width:7em}
.name{font-family:ui-monospace,"DejaVu Sans Mono",monospace;font-size:13.5px;white-space:pre-wrap}
.tree td{border-bottom:0;padding-top:0;padding-bottom:0}
.tree .branch{color:var(--dim)}
svg.map{display:block;width:100%;height:auto}
.map .back{fill:none}
footer{margin-top:48px;color:var(--dim);font-size:13px}
@media print{:root{color-scheme:light}body{max-width:none;padding:0;font-size:11pt}nav{display:none}
svg.map,tr{break-inside:avoid}h2,h3{break-after:avoid}
*{print-color-adjust:exact;-webkit-print-color-adjust:exact}}
)";

}  // namespace

std::string PageStyle() { return std::string(MapStyle()) + std::string(kPageRules); }

}  // namespace kelst
