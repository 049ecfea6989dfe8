#include "tools/kelst/MapDrawing.h"

namespace kelst {

// Tables are dark, streams light, damage glaring. What a class is for stands in MapDrawing.cpp.
std::string_view MapStyle() {
  return R"(
.map text{font:13px system-ui,"DejaVu Sans",sans-serif;fill:#1c2430}
.map rect{shape-rendering:crispEdges}
.map .name{font-family:ui-monospace,"DejaVu Sans Mono",monospace}
.map .title{font-size:18px;font-weight:600}
.map .head{font-weight:600}
.map .dim{fill:#5d6875}
.map .small{font-size:11px}
.map .right{text-anchor:end}
.map .back{fill:#fff}
.map .lines{fill:none;stroke:#fff;stroke-opacity:.4;pointer-events:none}
.map .header{fill:#0b0d12}
.map .fat{fill:#1d3f73}
.map .difat{fill:#5f86bd}
.map .directory{fill:#17603a}
.map .minifat{fill:#43308c}
.map .ministream{fill:#7d63c9}
.map .free{fill:#f0f2f4;stroke:#c3cad2}
.map .lost{fill:#e0142a}
.map .unknown{fill:#ff7a00}
.map .appended{fill:#8a5a2b}
.map .crossed{fill:#ff00b0}
.map .missing{fill:#ffd9dd}
.map .bad{fill:#c00f22;font-weight:600}
.map .s0{fill:#7fb3e6}
.map .s1{fill:#f5b35c}
.map .s2{fill:#8fcf8a}
.map .s3{fill:#e7a3c5}
.map .s4{fill:#c9b26b}
.map .s5{fill:#7fd0c7}
.map .s6{fill:#c3b1ea}
.map .s7{fill:#dd9c7c}
.map .s8{fill:#bfd662}
.map .s9{fill:#a5b3c4}
@media screen and (prefers-color-scheme:dark){
.map text{fill:#e4e8ee}
.map .dim{fill:#9aa5b3}
.map .back{fill:#14171c}
.map .lines{stroke:#14171c}
.map .header{fill:#f4f6f8}
.map .fat{fill:#2f66b8}
.map .difat{fill:#5f86bd}
.map .directory{fill:#1f8a50}
.map .minifat{fill:#5b45b8}
.map .free{fill:#20252c;stroke:#3b444f}
.map .missing{fill:#4d1820}
.map .bad{fill:#ff6b7a}
}
)";
}

}  // namespace kelst
