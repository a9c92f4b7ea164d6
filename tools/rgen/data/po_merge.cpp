// Does the same as msgmerge: texts that are equal keep their translations, also obsolete ones; a
// new text gets the translation of the most similar one, marked as fuzzy.
//
// SPDX-License-Identifier: MIT
#include "data/po_merge.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "base/suggestion.h"

namespace cli {
namespace {

using Key = std::pair<std::optional<std::string>, std::string>;

Key keyOf(const PoEntry& entry) {
    return {entry.context, entry.id};
}

/// Of several entries for one text a report uses the last one with a translation.
bool isBetter(const PoEntry& entry, const PoEntry& known) {
    const auto rank = [](const PoEntry& one) {
        return std::make_tuple(one.isUsable(), !one.isObsolete, one.hasTranslation());
    };
    return rank(entry) >= rank(known);
}

std::map<Key, const PoEntry*> entriesByText(const PoFile& catalogue) {
    std::map<Key, const PoEntry*> found;
    for (const PoEntry& entry : catalogue.entries) {
        if (entry.id.empty()) continue;
        const auto [known, isNew] = found.emplace(keyOf(entry), &entry);
        if (!isNew && isBetter(entry, *known->second)) known->second = &entry;
    }
    return found;
}

/// What comes from the templates; translations, flags and comments of translators are `source`'s.
PoEntry withTranslation(const PoEntry& wanted, const PoEntry& source) {
    PoEntry entry = wanted;
    entry.translations = source.translations;
    entry.flags = source.flags;
    entry.comments = source.comments;
    entry.previous = source.isFuzzy() ? source.previous : std::vector<std::string>();
    return entry;
}

/// Finds the entry with the most similar text.
class SimilarTexts {
public:
    explicit SimilarTexts(const PoFile& catalogue) {
        for (const PoEntry& entry : catalogue.entries) {
            if (!entry.id.empty() && entry.hasTranslation() && entry.id.size() <= longest)
                byLength_.emplace(entry.id.size(), &entry);
        }
    }

    const PoEntry* find(const std::string& text) const {
        const std::size_t longer = text.size() + text.size() / 2;
        const PoEntry* best = nullptr;
        std::size_t bestDistance = 0;
        std::size_t compared = 0;
        const auto end = byLength_.upper_bound(longer);
        for (auto at = byLength_.lower_bound(text.size() * 2 / 3); at != end; ++at) {
            if (text.size() > longest || ++compared > mostComparisons) break;
            const std::size_t distance = editDistance(text, at->second->id);
            const std::size_t size = std::max(text.size(), at->first);
            if (distance * 10 > size * 3 || (best != nullptr && distance >= bestDistance)) continue;
            best = at->second;
            bestDistance = distance;
        }
        return best;
    }

private:
    /// A comparison takes time in proportion to the product of the lengths.
    static constexpr std::size_t longest = 400;
    static constexpr std::size_t mostComparisons = 2000;
    std::multimap<std::size_t, const PoEntry*> byLength_;
};

PoEntry fuzzyEntry(const PoEntry& wanted, const PoEntry& similar) {
    PoEntry entry = withTranslation(wanted, similar);
    entry.setFuzzy(true);
    PoFile previous;
    previous.entries.emplace_back();
    previous.entries[0].context = similar.context;
    previous.entries[0].id = similar.id;
    std::string lines = poText(previous);
    lines.erase(lines.rfind("msgstr"));
    entry.previous.clear();
    for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1)
        entry.previous.push_back(lines.substr(at, lines.find('\n', at) - at));
    return entry;
}

PoEntry obsoleteEntry(const PoEntry& source) {
    PoEntry entry = source;
    entry.isObsolete = true;
    entry.extracted.clear();
    entry.references.clear();
    return entry;
}

}  // namespace

std::vector<PoEntry> wantedEntries(const PoFile& catalogue, const std::vector<PoEntry>& texts) {
    std::map<std::string, std::vector<const PoEntry*>> known;
    std::map<std::string, std::vector<const PoEntry*>> obsolete;
    for (const auto& [key, entry] : entriesByText(catalogue))
        (entry->isObsolete ? obsolete : known)[entry->id].push_back(entry);
    std::vector<PoEntry> wanted;
    for (const PoEntry& text : texts) {
        std::vector<const PoEntry*>& forms = known[text.id];
        if (forms.empty()) forms = obsolete[text.id];
        if (forms.empty()) wanted.push_back(text);
        for (const PoEntry* form : forms) {
            wanted.push_back(text);
            wanted.back().context = form->context;
            wanted.back().plural = form->plural;
        }
    }
    return wanted;
}

PoFile mergedCatalogue(const PoFile& catalogue, const std::vector<PoEntry>& wanted) {
    const std::map<Key, const PoEntry*> known = entriesByText(catalogue);
    const SimilarTexts similarTexts(catalogue);
    std::set<const PoEntry*> used;
    PoFile merged;
    if (catalogue.header() != nullptr) merged.entries.push_back(*catalogue.header());
    for (const PoEntry& text : wanted) {
        const auto found = known.find(keyOf(text));
        const PoEntry* source = found != known.end() ? found->second : nullptr;
        if (source != nullptr) {
            merged.entries.push_back(withTranslation(text, *source));
        } else {
            source = similarTexts.find(text.id);
            merged.entries.push_back(source != nullptr ? fuzzyEntry(text, *source) : text);
        }
        used.insert(source);
    }
    for (const auto& [key, entry] : known) {
        if (used.count(entry) == 0 && entry->hasTranslation())
            merged.entries.push_back(obsoleteEntry(*entry));
    }
    merged.lastComments = catalogue.lastComments;
    return merged;
}

PoFile completedMerge(PoFile merged, const PoFile& catalogue, const std::vector<PoEntry>& wanted) {
    const std::map<Key, const PoEntry*> known = entriesByText(catalogue);
    const std::map<Key, const PoEntry*> found = entriesByText(merged);
    PoFile complete;
    if (catalogue.header() != nullptr) complete.entries.push_back(*catalogue.header());
    for (const PoEntry& text : wanted) {
        const auto made = found.find(keyOf(text));
        const auto before = known.find(keyOf(text));
        const bool isKept = made != found.end() && !made->second->isObsolete;
        if (!isKept) throw std::runtime_error("its file lacks the text \"" + text.id + "\"");
        const PoEntry& entry = *made->second;
        const bool isLost =
            before != known.end() && before->second->isUsable() &&
            (!entry.isUsable() || entry.translations != before->second->translations);
        if (isLost)
            throw std::runtime_error("its file lacks the translation of \"" + text.id + "\"");
        complete.entries.push_back(withTranslation(text, entry));
    }
    for (PoEntry& entry : merged.entries) {
        if (entry.isObsolete) complete.entries.push_back(obsoleteEntry(entry));
    }
    complete.lastComments = catalogue.lastComments;
    return complete;
}

PoEntry newHeader(const std::string& language) {
    PoEntry header;
    header.translations.emplace_back(
        "Project-Id-Version: \n"
        "PO-Revision-Date: YEAR-MO-DA HO:MI+ZONE\n"
        "Last-Translator: FULL NAME <EMAIL@ADDRESS>\n"
        "Language-Team: LANGUAGE <LL@li.org>\n"
        "Language: " +
        language +
        "\n"
        "MIME-Version: 1.0\n"
        "Content-Type: text/plain; charset=UTF-8\n"
        "Content-Transfer-Encoding: 8bit\n");
    return header;
}

}  // namespace cli
