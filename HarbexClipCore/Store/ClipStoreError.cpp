#include "HarbexClipCore/Store/ClipStoreError.hpp"

#include "HarbexClipCore/Store/ClipKeyStore.hpp"

namespace harbex {

namespace {

std::string keychainDescription(std::int32_t status) {
    const std::string code = " (status " + std::to_string(status) + ")";
    switch (status) {
        case kKeychainInteractionNotAllowed:
            return "the login keyring is locked or didn\u2019t answer" + code;
        case kKeychainNotAvailable: return "no login keyring is available" + code;
        case kKeychainDecodeFailed:
            return "the key stored in the login keyring isn\u2019t a history key" + code;
        default: return "the login keyring refused to hand over the history key" + code;
    }
}

}  // namespace

std::optional<std::int32_t> ClipStoreError::keychainStatus() const {
    if (const auto* keychain = std::get_if<Keychain>(&value_)) return keychain->status;
    return std::nullopt;
}

std::string ClipStoreError::description() const {
    switch (kind()) {
        case Case::keychain: return keychainDescription(std::get<Keychain>(value_).status);
        case Case::cannotOpen:
            return "the data doesn\u2019t seal or open with the key in the login keyring";
        case Case::badFormat: return "the file isn\u2019t in a format Harbex Clipboard knows";
        case Case::file: return std::get<FileError>(value_).description();
        case Case::json:
            return "the history isn\u2019t readable (" + std::get<JsonError>(value_).description() +
                   ")";
    }
    return {};
}

}  // namespace harbex
