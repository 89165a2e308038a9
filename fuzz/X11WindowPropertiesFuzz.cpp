// Window properties set by other clients (_NET_WM_PID, WM_CLASS, _GTK_APPLICATION_ID) through
// the decoders the front-application lookup uses: no crash, no pid outside a pid's range, and
// names that stop at the first NUL, as the properties define.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "HarbexClip/Linux/X11SelectionData.hpp"

namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "X11WindowPropertiesFuzz: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbex;
    const std::string_view value(reinterpret_cast<const char*>(data), size);

    std::vector<std::uint32_t> cardinals(size / 4);
    if (!cardinals.empty()) std::memcpy(cardinals.data(), data, cardinals.size() * 4);
    if (auto pid = x11data::windowPid(cardinals)) require(*pid > 0, "pid out of range");

    const auto [instance, windowClass] = x11data::windowClass(value);
    require(instance.find('\0') == std::string::npos, "NUL in the instance");
    require(windowClass.find('\0') == std::string::npos, "NUL in the class");
    require(value.starts_with(instance), "instance not the first string");

    const std::string id = x11data::gtkApplicationId(value);
    require(id.find('\0') == std::string::npos && value.starts_with(id), "application id");
    return 0;
}
