#include "bench/Support/SyntheticHistory.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <string_view>

namespace harbex::bench {

namespace {

// Plain modulo over the engine's raw output: std::uniform_*_distribution differs between
// standard libraries, and the history must be the same everywhere.
std::size_t below(std::mt19937_64& random, std::size_t bound) {
    return static_cast<std::size_t>(random() % bound);
}

bool chance(std::mt19937_64& random, unsigned percent) { return below(random, 100) < percent; }

template <class T, std::size_t N>
const T& pick(std::mt19937_64& random, const std::array<T, N>& values) {
    return values[below(random, N)];
}

struct Word {
    std::string_view text;
    std::size_t characters;
};

constexpr std::array kAsciiWords{
    "the",     "of",     "and",     "meeting", "invoice", "please", "review", "attached",
    "project", "server", "deploy",  "config",  "error",   "update", "report", "customer",
    "order",   "status", "release", "notes",   "design",  "draft",  "budget", "quarter",
    "team",    "call",   "link",    "address", "number",  "thanks", "today",  "tomorrow",
};

constexpr std::array kOtherWords{
    Word{"café", 4},
    Word{"naïve", 5},
    Word{"Grüße", 5},
    Word{"façade", 6},
    Word{"Øresund", 7},
    Word{"señor", 5},
    Word{"東京", 2},
    Word{"会議", 2},
    Word{"資料", 2},
    Word{"서울", 2},
    Word{"привет", 6},
    Word{"مرحبا", 5},
    Word{"👍", 1},
    Word{"🎉", 1},
    Word{"👨‍👩‍👧", 1},
    Word{"e\u0301t\u0301e\u0301", 3},
};

constexpr std::array kApps{
    std::pair{"org.mozilla.firefox", "Firefox"},
    std::pair{"org.gnome.TextEditor", "Text Editor"},
    std::pair{"com.visualstudio.code.oss", "Code - OSS"},
    std::pair{"org.gnome.Terminal", "Terminal"},
    std::pair{"org.libreoffice.LibreOffice.writer", "LibreOffice Writer"},
    std::pair{"org.gnome.Nautilus", "Files"},
    std::pair{"com.slack.Slack", "Slack"},
    std::pair{"org.gimp.GIMP", "GNU Image Manipulation Program"},
};

constexpr std::array kHosts{"www.example.com", "docs.example.org", "news.example.net",
                            "github.com",      "en.wikipedia.org", "shop.example.co.uk",
                            "例え.jp",         "mail.example.com"};

constexpr std::array kCodeLines{
    "for (std::size_t i = 0; i < items.size(); ++i) {",
    "    if (!status) return std::unexpected(status.error());",
    "def parse(text: str) -> dict:",
    "    return {key: value for key, value in pairs}",
    "SELECT id, name FROM customers WHERE created_at > NOW() - INTERVAL '1 day';",
    "const result = await fetch(url, { method: 'POST', body });",
    "}",
    "let total = values.reduce(0, +)",
};

std::size_t bodyCharacters(std::mt19937_64& random) {
    const std::size_t roll = below(random, 100);
    const std::size_t limit = roll < 50 ? 100 : roll < 80 ? 1000 : roll < 95 ? 5000 : 20000;
    return 1 + below(random, limit);
}

Uuid syntheticID(std::mt19937_64& random) {
    Uuid id;
    for (std::size_t i = 0; i < id.bytes.size(); i += 8) {
        const std::uint64_t bits = random();
        for (std::size_t j = 0; j < 8; ++j)
            id.bytes[i + j] = static_cast<std::uint8_t>(bits >> (8 * j));
    }
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::string hexDigits(std::mt19937_64& random, std::size_t count) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) out += kDigits[random() & 0xF];
    return out;
}

std::string codeText(std::mt19937_64& random, std::size_t characters) {
    std::string out;
    while (out.size() < characters) {
        if (!out.empty()) out += '\n';
        out += pick(random, kCodeLines);
    }
    return out;
}

std::string linkText(std::mt19937_64& random) {
    std::string out = chance(random, 85) ? "https://" : "http://";
    out += pick(random, kHosts);
    const std::size_t segments = below(random, 4);
    for (std::size_t i = 0; i < segments; ++i) {
        out += '/';
        out += pick(random, kAsciiWords);
    }
    if (segments == 0 || chance(random, 30)) out += '/';
    if (chance(random, 30)) out += "?utm_source=newsletter&id=" + hexDigits(random, 6);
    return out;
}

std::string titleCase(std::string_view word) {
    std::string out(word);
    if (!out.empty() && out[0] >= 'a' && out[0] <= 'z') out[0] = static_cast<char>(out[0] - 32);
    return out;
}

ClipContent syntheticContent(std::mt19937_64& random, std::vector<ClipDetail>& details) {
    const std::size_t roll = below(random, 100);
    ClipContent content;
    if (roll < 55) {
        content.kind = ClipKind::text;
        content.text = syntheticText(random, bodyCharacters(random));
        if (chance(random, 5)) details.push_back(ClipDetail::email);
        if (chance(random, 3)) details.push_back(ClipDetail::number);
    } else if (roll < 65) {
        content.kind = ClipKind::richText;
        content.text = syntheticText(random, bodyCharacters(random));
        const std::string excerpt = content.text->substr(0, 200);
        content.rtf = bytesOf("{\\rtf1\\ansi\\deff0 {\\fonttbl {\\f0 Helvetica;}}\\f0\\fs24 " +
                              excerpt + "}");
        if (chance(random, 70))
            content.html = bytesOf("<meta charset=\"utf-8\"><p><b>" + excerpt + "</b></p>");
    } else if (roll < 77) {
        content.kind = ClipKind::link;
        content.text = linkText(random);
        if (chance(random, 70)) {
            content.linkTitle = titleCase(pick(random, kAsciiWords)) + " " +
                                std::string(pick(random, kAsciiWords)) + " – Example";
        }
    } else if (roll < 85) {
        content.kind = ClipKind::code;
        content.text = codeText(random, bodyCharacters(random));
    } else if (roll < 89) {
        content.kind = ClipKind::color;
        std::string hex = "#" + hexDigits(random, 6);
        for (char& c : hex) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        content.text = hex;
        content.colorHex = hex;
    } else if (roll < 94) {
        content.kind = ClipKind::file;
        std::vector<std::string> paths;
        const std::size_t count = 1 + (chance(random, 20) ? below(random, 4) : 0);
        for (std::size_t i = 0; i < count; ++i) {
            paths.push_back("/home/user/Documents/" + std::string(pick(random, kAsciiWords)) + "-" +
                            std::to_string(below(random, 1000)) + ".pdf");
        }
        content.filePaths = std::move(paths);
    } else {
        content.kind = ClipKind::image;
        const double width = double(64 + below(random, 3840));
        const double height = double(64 + below(random, 2160));
        content.image =
            ClipImageInfo{chance(random, 80) ? "public.png" : "public.jpeg", width, height,
                          std::int64_t(width * height * 0.8), hexDigits(random, 64)};
    }
    return content;
}

}  // namespace

std::string syntheticText(std::mt19937_64& random, std::size_t characters) {
    std::string out;
    out.reserve(characters + characters / 4);
    std::size_t written = 0;
    while (written < characters) {
        if (written > 0) {
            // Lines of a few dozen words, with the odd blank line between paragraphs.
            const std::size_t roll = below(random, 100);
            out += roll < 4 ? "\n" : roll < 5 ? "\n\n" : " ";
            written += roll < 4 ? 1 : roll < 5 ? 2 : 1;
        }
        if (chance(random, 8)) {
            const Word& word = pick(random, kOtherWords);
            out += word.text;
            written += word.characters;
        } else {
            const std::string_view word = pick(random, kAsciiWords);
            out += word;
            written += word.size();
        }
    }
    return out;
}

ClipLibrary makeSyntheticHistory(std::size_t itemCount, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    ClipLibrary library;
    library.items.reserve(itemCount);
    Date date = kSyntheticNow;
    // About eight months in all, whatever the count.
    const double meanGap = 21'000'000.0 / double(std::max<std::size_t>(itemCount, 1));
    for (std::size_t i = 0; i < itemCount; ++i) {
        std::vector<ClipDetail> details;
        ClipContent content = syntheticContent(random, details);
        const auto& app = pick(random, kApps);
        ClipItem item = ClipItem::make(std::move(content), std::move(details),
                                       ClipSource{app.first, app.second}, date,
                                       ClipSensitivity::ordinary, syntheticID(random));
        if (chance(random, 30)) {
            item.timesCopied = 1 + std::int64_t(below(random, 5));
            item.firstCopied = date - double(below(random, 2'000'000));
        }
        if (chance(random, 25)) {
            item.timesPasted = 1 + std::int64_t(below(random, 20));
            item.lastPasted = date + double(below(random, 3600));
        }
        if (chance(random, 2)) item.customTitle = "Saved " + std::to_string(i);
        if (item.kind == ClipKind::image && chance(random, 20))
            item.ocrText = syntheticText(random, 40);
        if (chance(random, 1)) {
            item.isSensitive = true;
            item.expiresAt = date + 60.0;
        }
        if (isTextual(item.kind) && chance(random, 1) && item.text) {
            item.edit(*item.text + " (edited)");
        }
        library.items.push_back(std::move(item));
        date = date - (double(below(random, 2000)) / 1000.0) * meanGap - 0.125;
    }

    constexpr std::array boards{std::pair{"Work", "blue"}, std::pair{"Snippets", "green"},
                                std::pair{"Links", "orange"}, std::pair{"Later", "purple"}};
    constexpr std::array symbols{"briefcase", "curlybraces", "link", "clock"};
    for (std::size_t b = 0; b < boards.size(); ++b) {
        Pinboard board{syntheticID(random), boards[b].first, boards[b].second, symbols[b], {}};
        for (const auto& item : library.items) {
            if (chance(random, 1)) board.itemIDs.push_back(item.id);
        }
        library.pinboards.push_back(std::move(board));
    }
    return library;
}

}  // namespace harbex::bench
