// A parser begins a start tag at a "<" with a letter and nowhere else, and how it reads on from
// there depends on nothing before. So each such place is read as a tag, whatever surrounds it:
// comments, scripts and foreign elements are no matter. Tags that lie inside values of others
// share their attributes; each attribute is read once.
//
// Only letters and digits are ever replaced, by letters and digits. On purpose: without a quote or
// a ">" that was there before, another tag would be read in another way than the one that was
// looked at.
//
// SPDX-License-Identifier: MIT
#include "page/sanitizer.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "page/html_tags.h"

namespace vellum {
namespace {

/// What follows in a tag from one of its attributes on.
struct Rest {
    std::size_t end = 0;
    bool hasAttachment = false;
};

std::string_view part(const std::string& page, std::size_t from, std::size_t to) {
    return std::string_view(page).substr(from, to - from);
}

bool isNamed(const std::string& page, const AttributePlace& place, std::string_view name) {
    return place.nameEnd - place.name == name.size() &&
           lowerCase(part(page, place.name, place.nameEnd)) == name;
}

/// A relation that is written with references hides something and counts as an attachment.
bool isAttachment(const std::string& page, const AttributePlace& place) {
    if (!isNamed(page, place, "rel")) return false;
    const std::string_view value = part(page, place.value, place.valueEnd);
    return value.find('&') != std::string_view::npos ||
           lowerCase(value).find("attachment") != std::string::npos;
}

bool isHarmfulEquivalent(const std::string& page, const AttributePlace& place) {
    if (!isNamed(page, place, "http-equiv")) return false;
    const std::string value =
        lowerCase(trimmed(withoutReferences(part(page, place.value, place.valueEnd))));
    for (const char* allowed : {"content-type", "content-language", "content-security-policy",
                                "x-ua-compatible", "default-style"}) {
        if (value == allowed) return false;
    }
    return true;
}

class Disarming {
public:
    Disarming(std::string& page, Checkpoint& checkpoint) : page_(page), checkpoint_(checkpoint) {}

    void run() {
        std::size_t last = 0;
        for (std::size_t at = page_.find('<'); at != std::string::npos;
             at = page_.find('<', at + 1)) {
            checkpoint_.passed(at - last + 1);
            last = at;
            // A tag whose name ends where that of the one before ends is the same from there on.
            if (isTagStart(page_, at) && at >= nameEnd_) lookAtTag(at);
        }
        for (const std::size_t place : equivalents_)
            page_.replace(place, 4, "data");
        for (const Range& range : attachments_)
            makeMeaningless(range);
    }

private:
    struct Range {
        std::size_t start;
        std::size_t end;
    };

    void lookAtTag(std::size_t start) {
        nameEnd_ = endOfTagName(page_, start);
        const std::size_t first = nextAttribute(page_, nameEnd_);
        checkpoint_.passed(first - start);
        const Rest rest = restFrom(first);
        if (rest.hasAttachment) attachments_.push_back({nameEnd_, rest.end});
    }

    Rest restFrom(std::size_t at) {
        struct Step {
            std::size_t place;
            bool isAttachment;
        };
        std::vector<Step> steps;
        Rest rest;
        const std::size_t first = at;
        for (;; at = nextAttribute(page_, at)) {
            if (at == page_.size() || page_[at] == '>') {
                rest.end = at;
                break;
            }
            const auto known = known_.find(at);
            if (known != known_.end()) {
                rest = known->second;
                break;
            }
            const AttributePlace place = attributeAt(page_, at);
            if (isHarmfulEquivalent(page_, place)) equivalents_.push_back(place.name);
            steps.push_back({at, isAttachment(page_, place)});
            checkpoint_.passed(place.end - at);
            at = place.end;
        }
        // Only a tag that begins inside this one can come to its attributes again.
        const std::size_t inner = std::min(page_.find('<', first), rest.end);
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            rest.hasAttachment = rest.hasAttachment || step->isAttachment;
            if (step->place >= inner) known_[step->place] = rest;
        }
        return rest;
    }

    void makeMeaningless(const Range& range) {
        for (std::size_t at = std::max(range.start, meaninglessTo_); at < range.end; ++at) {
            const char letter = page_[at];
            const bool isLetter =
                (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
            if (isLetter) page_[at] = 'x';
            if (letter >= '0' && letter <= '9') page_[at] = '0';
        }
        meaninglessTo_ = std::max(meaninglessTo_, range.end);
        checkpoint_.passed(1);
    }

    std::string& page_;
    Checkpoint& checkpoint_;
    std::size_t nameEnd_ = 0;
    std::unordered_map<std::size_t, Rest> known_;
    std::vector<std::size_t> equivalents_;
    std::vector<Range> attachments_;
    std::size_t meaninglessTo_ = 0;
};

}  // namespace

void disarm(std::string& page, Checkpoint& checkpoint) {
    Disarming(page, checkpoint).run();
}

}  // namespace vellum
