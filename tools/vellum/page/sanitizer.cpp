// A parser starts a tag only at a "<" with a letter after it, and how it reads the tag does not
// depend on anything before. So every such offset is read as a tag, also in comments, scripts and
// foreign elements: no parser can find a tag that was not examined. A tag inside an attribute value
// of another tag shares the rest of its attributes; each attribute is read once, so the time is
// linear.
//
// On purpose: only letters and digits are replaced, by letters and digits. Removing a quote or a
// ">" would change how a parser reads the tags after it.
//
// SPDX-License-Identifier: MIT
#include "page/sanitizer.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/ascii.h"
#include "page/html_tags.h"

namespace vellum {
namespace {

/// The rest of a tag, from one of its attributes on.
struct TagRest {
    std::size_t end = 0;
    bool hasAttachment = false;
};

std::string_view part(const std::string& page, std::size_t from, std::size_t to) {
    return std::string_view(page).substr(from, to - from);
}

bool isNamed(const std::string& page, const AttributePosition& place, std::string_view name) {
    return place.nameEnd - place.name == name.size() &&
           lowerCase(part(page, place.name, place.nameEnd)) == name;
}

/// A "rel" value with a character reference counts as an attachment, whatever it means.
bool isAttachment(const std::string& page, const AttributePosition& place) {
    if (!isNamed(page, place, "rel")) return false;
    const std::string_view value = part(page, place.value, place.valueEnd);
    return value.find('&') != std::string_view::npos ||
           lowerCase(value).find("attachment") != std::string::npos;
}

bool isHarmfulEquivalent(const std::string& page, const AttributePosition& place) {
    if (!isNamed(page, place, "http-equiv")) return false;
    const std::string value =
        lowerCase(trimmed(decodeReferences(part(page, place.value, place.valueEnd))));
    for (const char* allowed : {"content-type", "content-language", "content-security-policy",
                                "x-ua-compatible", "default-style"}) {
        if (value == allowed) return false;
    }
    return true;
}

class Sanitizer {
public:
    Sanitizer(std::string& page, Checkpoint& checkpoint) : page_(page), checkpoint_(checkpoint) {}

    void run() {
        std::size_t last = 0;
        for (std::size_t at = page_.find('<'); at != std::string::npos;
             at = page_.find('<', at + 1)) {
            checkpoint_.processed(at - last + 1);
            last = at;
            // A tag inside the name of the previous one has the same attributes.
            if (isTagStart(page_, at) && at >= nameEnd_) examineTag(at);
        }
        // "http-equiv" becomes "data-equiv", which has no meaning.
        for (const std::size_t place : equivalents_)
            page_.replace(place, 4, "data");
        for (const Range& range : attachments_)
            overwrite(range);
    }

private:
    struct Range {
        std::size_t start;
        std::size_t end;
    };

    void examineTag(std::size_t start) {
        nameEnd_ = endOfTagName(page_, start);
        const std::size_t first = nextAttribute(page_, nameEnd_);
        checkpoint_.processed(first - start);
        const TagRest rest = restFrom(first);
        if (rest.hasAttachment) attachments_.push_back({nameEnd_, rest.end});
    }

    /// Reads the attributes of a tag from `at` to its end, or to one that was read before.
    TagRest restFrom(std::size_t at) {
        struct Step {
            std::size_t place;
            bool isAttachment;
        };
        std::vector<Step> steps;
        TagRest rest;
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
            const AttributePosition place = attributeAt(page_, at);
            if (isHarmfulEquivalent(page_, place)) equivalents_.push_back(place.name);
            steps.push_back({at, isAttachment(page_, place)});
            checkpoint_.processed(place.end - at);
            at = place.end;
        }
        // Only tags that start inside this one reach its attributes again.
        const std::size_t inner = std::min(page_.find('<', first), rest.end);
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            rest.hasAttachment = rest.hasAttachment || step->isAttachment;
            if (step->place >= inner) known_[step->place] = rest;
        }
        return rest;
    }

    void overwrite(const Range& range) {
        for (std::size_t at = std::max(range.start, overwrittenTo_); at < range.end; ++at) {
            if (isLetter(page_[at])) page_[at] = 'x';
            if (isDigit(page_[at])) page_[at] = '0';
        }
        overwrittenTo_ = std::max(overwrittenTo_, range.end);
        checkpoint_.processed(1);
    }

    std::string& page_;
    Checkpoint& checkpoint_;
    std::size_t nameEnd_ = 0;
    std::unordered_map<std::size_t, TagRest> known_;
    std::vector<std::size_t> equivalents_;
    std::vector<Range> attachments_;
    std::size_t overwrittenTo_ = 0;
};

}  // namespace

void sanitize(std::string& page, Checkpoint& checkpoint) {
    Sanitizer(page, checkpoint).run();
}

}  // namespace vellum
