// Templates made of two tables: the places, which are the elements of XSLT, and the kinds of nodes
// that such an element can contain.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_NODE_KINDS_H
#define RGEN_TESTS_SUPPORT_NODE_KINDS_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace rgen_test {

// An XML text with a name for messages. That of a place contains one "@", which the content
// replaces.
struct NodeText {
    std::string label;
    std::string xml;
};

std::ostream& operator<<(std::ostream& out, const NodeText& text);

// Instructions and literal elements inside a template.
const std::vector<NodeText>& bodyPlaces();
// Top-level elements beside the templates.
const std::vector<NodeText>& topLevelPlaces();
// Text of some lengths, CDATA, comment, instruction, reference, elements of every sort, nothing.
const std::vector<NodeText>& nodeKinds();

// Visits every kind in every place; where everything takes longer, every third combination.
using VisitCombination = std::function<void(const NodeText& place, const NodeText& kind)>;
void forEachPlaceAndKind(const std::vector<NodeText>& places, const VisitCombination& visit);

// Lengths below and above the largest block of a pool.
constexpr std::size_t shortLength = 10;
constexpr std::size_t longLength = 70000;

// The same letters as text and as a CDATA section.
std::string letters(std::size_t length);
std::string cdata(const std::string& text);

// The stylesheet with that content in that place, for an output method. It also uses everything
// that the place defines.
std::string sheetWithBody(const NodeText& place, const std::string& content,
                          const std::string& method);
std::string sheetWithTopLevel(const NodeText& place, const std::string& content,
                              const std::string& method);

}  // namespace rgen_test

#endif
