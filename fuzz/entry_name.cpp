#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/kelst/EntryName.h"
#include "tools/kelst/Glob.h"
#include "tools/kelst/InstallerName.h"

// The written forms of names: what is written is read back as the same name, from JSON too, is one
// component of a path and valid UTF-8; any name can be decoded, and any text parsed as a path or a
// glob; and a name without wildcards matches itself.

namespace {

/// Throws for what is not UTF-8.
void ExpectJsonRoundTrip(const std::string& text) {
  if (nlohmann::json::parse(nlohmann::json(text).dump()) != text) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string name(std::min<std::size_t>(size / 2, 32), u'\0');
  if (!name.empty()) std::memcpy(name.data(), data, name.size() * 2);
  const std::string written = kelst::WrittenName(name);
  const auto path = kelst::ParseEntryPath(written);
  if (!path || path->size() != 1 || path->front().name != name || path->front().index) std::abort();
  ExpectJsonRoundTrip(written);
  ExpectJsonRoundTrip(kelst::PlainUtf8(name));
  const std::string file = kelst::FileName(name);
  const bool isHarmless = !file.empty() && file != "." && file != ".." && file.size() <= 255 &&
                          file.find('/') == std::string::npos &&
                          file.find('\0') == std::string::npos;
  if (!isHarmless) std::abort();
  const auto decoded = kelst::DecodedInstallerName(name);
  if (decoded && (decoded->empty() || decoded->size() > 2 * name.size())) std::abort();
  const std::string text(reinterpret_cast<const char*>(data), size);
  kelst::ParseEntryPath(text);
  ExpectJsonRoundTrip(kelst::Printable(text));
  const auto glob = kelst::Glob::Parse(text);
  if (glob) static_cast<void>(glob->Matches(written));
  const bool isPlain = written.find_first_of("*?[") == std::string::npos;
  if (isPlain && !kelst::Glob::Parse(written)->Matches(written)) std::abort();
  return 0;
}
