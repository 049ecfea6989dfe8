#include "tests/cli/HostileFile.h"

#include "tests/support/CompoundFileBuilder.h"
#include "tests/support/PropertySetBuilder.h"

namespace kelx::test {

Bytes HostileFile() {
  CompoundFileBuilder builder;
  EntryIndex storage = kRoot;
  for (const std::u16string_view name : {u"</style><script>intruder()</scri",
                                         u"\"><svg onload=intruder()>", u"'&#60;--\u202E\uFFFF"}) {
    builder.AddStream(kRoot, name, Pattern(5000));
    storage = builder.AddStorage(storage, name);
    builder.AddStream(storage, name, Pattern(100));
  }
  using Names = std::vector<std::pair<std::uint32_t, std::string>>;
  const Bytes set = PropertySetBuilder({}, kUserDefinedId)
                        .Add(0, Dictionary(Names{{2, "<script>intruder()</script>"}, {3, "b"}}))
                        .Add(1, CodePage(1252))
                        .Add(2, Lpstr("</td></table><script>intruder()</script>"))
                        .Add(3, Lpstr("\x01\x02 \" onclick=\"intruder()\" x='"))
                        .Build();
  builder.AddStream(kRoot, u"\x05<script>intruder()</script>", set);
  builder.AddStream(kRoot, u"\x05<b onclick=intruder()>", Pattern(100));
  return builder.Build().bytes;
}

}  // namespace kelx::test
