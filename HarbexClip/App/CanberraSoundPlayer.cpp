#include "HarbexClip/App/CanberraSoundPlayer.hpp"

#include <dlfcn.h>

#include <cstdint>

#include "HarbexClip/App/ClipApp.hpp"

namespace harbex {

namespace {

// libcanberra's context is opaque; these are the four calls used, as its header declares them.
// Every property list is key, value, ..., ending with a null pointer.
struct CaContext;
using CaCreate = int (*)(CaContext**);
using CaDestroy = int (*)(CaContext*);
using CaChangeProps = int (*)(CaContext*, ...);
using CaPlay = int (*)(CaContext*, std::uint32_t, ...);
constexpr int kCaSuccess = 0;

const char* eventDescription(SoundEvent event) {
    switch (event) {
        case SoundEvent::copyKept: return "Copy saved";
    }
    return "";
}

}  // namespace

struct CanberraSoundPlayer::Canberra {
    void* library = nullptr;
    CaContext* context = nullptr;
    CaDestroy destroy = nullptr;
    CaPlay play = nullptr;

    ~Canberra() {
        if (context && destroy) destroy(context);
        if (library) dlclose(library);
    }
};

CanberraSoundPlayer::CanberraSoundPlayer() = default;
CanberraSoundPlayer::~CanberraSoundPlayer() = default;

const char* CanberraSoundPlayer::eventID(SoundEvent event) {
    switch (event) {
        case SoundEvent::copyKept: return "complete-copy";
    }
    return "complete";
}

bool CanberraSoundPlayer::ensureLoaded() {
    if (canberra_) return true;
    if (triedLoading_) return false;
    triedLoading_ = true;

    auto canberra = std::make_unique<Canberra>();
    canberra->library = dlopen("libcanberra.so.0", RTLD_LAZY | RTLD_LOCAL);
    if (!canberra->library) return false;
    auto create = reinterpret_cast<CaCreate>(dlsym(canberra->library, "ca_context_create"));
    auto changeProps =
        reinterpret_cast<CaChangeProps>(dlsym(canberra->library, "ca_context_change_props"));
    canberra->destroy = reinterpret_cast<CaDestroy>(dlsym(canberra->library, "ca_context_destroy"));
    canberra->play = reinterpret_cast<CaPlay>(dlsym(canberra->library, "ca_context_play"));
    if (!create || !changeProps || !canberra->destroy || !canberra->play) return false;
    if (create(&canberra->context) != kCaSuccess || !canberra->context) return false;
    // The sound server shows these beside the stream (for example in a volume mixer).
    changeProps(canberra->context, "application.name", "Harbex Clipboard", "application.id",
                kAppIdentifier, "application.icon_name", kAppIdentifier,
                static_cast<const char*>(nullptr));
    canberra_ = std::move(canberra);
    return true;
}

void CanberraSoundPlayer::play(SoundEvent event) {
    if (!ensureLoaded()) return;
    // A failure (no sound server, no such sound in the theme) is not worth telling anyone.
    (void)canberra_->play(canberra_->context, 0, "event.id", eventID(event), "event.description",
                          eventDescription(event), static_cast<const char*>(nullptr));
}

}  // namespace harbex
