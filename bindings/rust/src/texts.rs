// Converts texts for the library and back: null-terminated UTF-8, and XML content.
//
// SPDX-License-Identifier: MIT
use std::ffi::{CStr, CString};
use std::path::Path;

use crate::error::Error;
use crate::rgen_native::{CChar, RgenAnsiString};

const BLANKS: [char; 4] = [' ', '\t', '\r', '\n'];
/// "&#x0010FFFF;" is the longest reference that is decoded.
const LONGEST_REFERENCE: usize = 12;
/// The number of bytes that the library reads of one text of a file.
const LONGEST_STORED_TEXT: usize = 10_000_000;
/// The limit for names: they are stored in attributes, where a character takes up to six bytes.
const LONGEST_STORED_NAME: usize = 1_000_000;

/// The library would truncate a text at a zero byte.
pub(crate) fn to_native(text: &str, what: &str) -> Result<CString, Error> {
    CString::new(text).map_err(|_| Error::Text(format!("{what} holds a zero byte")))
}

pub(crate) fn path_text(path: &Path) -> Result<&str, Error> {
    let problem = |what| Error::Text(format!("{}: the path {what}", path.display()));
    let text = path.to_str().ok_or_else(|| problem("is no UTF-8"))?;
    if text.contains('\0') {
        return Err(problem("holds a zero byte"));
    }
    Ok(text)
}

/// Bytes that are not UTF-8 become U+FFFD.
pub(crate) fn from_record(record: &RgenAnsiString) -> String {
    if record.data.is_null() {
        return String::new();
    }
    let bytes =
        unsafe { std::slice::from_raw_parts(record.data as *const u8, record.length as usize) };
    String::from_utf8_lossy(bytes).into_owned()
}

/// The text must end with a zero byte.
pub(crate) unsafe fn from_native(text: *const CChar) -> String {
    CStr::from_ptr(text.cast()).to_string_lossy().into_owned()
}

/// Escapes a text for a report, where the library decodes it once.
pub(crate) fn escaped(text: &str) -> String {
    text.replace('&', "&amp;")
}

/// The name of a persistent text.
pub(crate) fn stored_name(name: &str) -> Result<String, Error> {
    if name.len() > LONGEST_STORED_NAME {
        let problem = "the name of a persistent text has more than 1,000,000 bytes";
        return Err(Error::Text(problem.to_string()));
    }
    Ok(held_by_xml(name))
}

/// A plain persistent text, escaped for the library.
pub(crate) fn stored_text(name: &str, text: &str) -> Result<String, Error> {
    let read = escaped_with_edges(&held_by_xml(text));
    require_storable(name, read.len())?;
    Ok(escaped(&read))
}

/// The same for XML content.
pub(crate) fn stored_markup(name: &str, content: &str) -> Result<String, Error> {
    let markup = checked_markup(content, "a persistent text")?;
    require_storable(name, without_references(&markup).len())?;
    Ok(markup)
}

/// Fails for a text that the library would truncate when it reads it again.
pub(crate) fn require_storable(name: &str, length: usize) -> Result<(), Error> {
    if length <= LONGEST_STORED_TEXT {
        return Ok(());
    }
    let limit = "has more than 10,000,000 bytes, \"&\" counted as \"&amp;\"";
    Err(Error::Text(format!("the persistent text {name} {limit}")))
}

fn is_held_by_xml(letter: char) -> bool {
    match letter {
        '\t' | '\n' | '\r' => true,
        _ => letter >= ' ' && letter != '\u{FFFE}' && letter != '\u{FFFF}',
    }
}

/// Replaces characters that XML does not allow by U+FFFD: a single one in the persistent data file
/// or in a template would make the library lose all references after it.
fn held_by_xml(text: &str) -> String {
    text.chars().map(|letter| if is_held_by_xml(letter) { letter } else { '\u{FFFD}' }).collect()
}

/// The reference at the start of the text, such as "&amp;"; only "&" if there is none.
fn ampersand_at(rest: &str) -> &str {
    let start = if rest[1..].starts_with('#') { 2 } else { 1 };
    let end = match rest[start..].find(['&', ';', '#', '<', ' ', '\t', '\r', '\n']) {
        Some(length) if length > 0 && rest[start + length..].starts_with(';') => start + length,
        _ => return "&",
    };
    if start == 2 && number_digits(&rest[1..end]).is_none() {
        return "&";
    }
    &rest[..=end]
}

/// The digits of "#65" or "#x41", and their base.
fn number_digits(name: &str) -> Option<(&str, u32)> {
    let number = name.strip_prefix('#')?;
    let (digits, base) = match number.strip_prefix('x') {
        Some(digits) => (digits, 16),
        None => (number, 10),
    };
    let is_number = !digits.is_empty() && digits.chars().all(|digit| digit.is_digit(base));
    is_number.then_some((digits, base))
}

/// A reference that XML defines, in the form that a document may contain.
fn held_reference(reference: &str) -> Option<&str> {
    let name = reference[1..].strip_suffix(';')?;
    match number_digits(name) {
        Some(_) if meaning(name).map_or(false, is_held_by_xml) => Some(reference),
        Some(_) => Some("&#xFFFD;"),
        None => meaning(name).map(|_| reference),
    }
}

/// Markup that does not damage the text after it; fails for references that XML does not define.
/// For the library a name extends to the next ";", with any characters in between; without a ";"
/// only the "&" is lost.
pub(crate) fn checked_markup(content: &str, what: &str) -> Result<String, Error> {
    let text = held_by_xml(content);
    let last_end = text.rfind(';').map_or(0, |last| last + 1);
    let mut markup = String::with_capacity(text.len());
    let mut start = 0;
    while let Some(plain) = text[start..].find('&') {
        let at = start + plain;
        markup.push_str(&text[start..at]);
        let reference = ampersand_at(&text[at..]);
        let held = held_reference(reference);
        let is_unknown = held.is_none() && !text[at + 1..].starts_with('#') && at < last_end;
        if is_unknown {
            let name: String = text[at..].chars().take(40).collect();
            return Err(Error::Text(format!("{what} holds the unknown reference at {name}")));
        }
        markup.push_str(held.unwrap_or(reference));
        start = at + reference.len();
    }
    Ok(markup + &text[start..])
}

/// Escapes a text of persistent data for the second of two decodings. The library then removes
/// white space at the edges unless it is written as references.
fn escaped_with_edges(text: &str) -> String {
    let rest = text.trim_start_matches(BLANKS);
    let middle = rest.trim_end_matches(BLANKS);
    let start = &text[..text.len() - rest.len()];
    references(start) + &escaped(middle) + &references(&rest[middle.len()..])
}

fn references(blanks: &str) -> String {
    blanks.bytes().map(|blank| format!("&#{blank};")).collect()
}

/// The text of XML content; an "&" that starts no reference stays.
pub(crate) fn without_references(content: &str) -> String {
    let mut text = String::new();
    let mut rest = content;
    while let Some(at) = rest.find('&') {
        text.push_str(&rest[..at]);
        rest = &rest[at..];
        let end = rest.bytes().take(LONGEST_REFERENCE).position(|byte| byte == b';');
        match end.and_then(|end| Some((end, meaning(&rest[1..end])?))) {
            Some((end, letter)) => {
                text.push(letter);
                rest = &rest[end + 1..];
            }
            None => {
                text.push('&');
                rest = &rest[1..];
            }
        }
    }
    text + rest
}

/// The character of "amp" or "#65" or "#x41".
fn meaning(name: &str) -> Option<char> {
    match name {
        "amp" => return Some('&'),
        "lt" => return Some('<'),
        "gt" => return Some('>'),
        "quot" => return Some('"'),
        "apos" => return Some('\''),
        _ => (),
    }
    let (digits, base) = number_digits(name)?;
    char::from_u32(u32::from_str_radix(digits, base).ok()?).filter(|letter| *letter != '\0')
}

/// Escapes each "&" that starts no reference of XML.
fn with_known_references(text: &str) -> String {
    let mut markup = String::with_capacity(text.len());
    let mut rest = text;
    while let Some(at) = rest.find('&') {
        markup.push_str(&rest[..at]);
        let reference = ampersand_at(&rest[at..]);
        match held_reference(reference) {
            Some(held) => markup.push_str(held),
            None => markup = markup + "&amp;" + &reference[1..],
        }
        rest = &rest[at + reference.len()..];
    }
    markup + rest
}

/// Escapes a translation, which becomes part of a template: characters of markup count as markup
/// only if the original text contains them, and nothing may damage the rest of the template.
pub(crate) fn as_markup(original: &str, translation: &str) -> String {
    let mut markup = held_by_xml(translation);
    if !original.contains('&') {
        markup = escaped(&markup);
    }
    markup = with_known_references(&markup);
    if !original.contains('<') {
        markup = markup.replace('<', "&lt;");
    }
    if !original.contains('>') {
        markup = markup.replace('>', "&gt;");
    }
    // The end of a CDATA section in the translation stays.
    if !markup.contains("<![CDATA[") {
        markup = markup.replace("]]>", "]]&gt;");
    }
    // A marker in an attribute is enclosed in single quotes.
    if !original.contains('\'') {
        markup = markup.replace('\'', "&#39;");
    }
    markup
}

#[cfg(test)]
mod texts_tests {
    use super::*;

    #[test]
    fn references_become_characters() {
        let rows = [
            ("a &amp; b", "a & b"),
            ("&lt;&gt;&quot;&apos;", "<>\"'"),
            ("&#65;&#x42;&#x1F4D6;", "AB\u{1F4D6}"),
            ("&amp;amp;", "&amp;"),
            ("&", "&"),
            (
                "&;&#;&#x;&#+5;&#0;&#xD800;&#x110000;&copy;",
                "&;&#;&#x;&#+5;&#0;&#xD800;&#x110000;&copy;",
            ),
            ("&слово; &amp слово", "&слово; &amp слово"),
            ("&сло;", "&сло;"),
        ];
        for (content, text) in rows {
            assert_eq!(text, without_references(content));
        }
    }

    #[test]
    fn translations_damage_nothing() {
        let rows = [
            ("a", "x]]>y > & < '", "x]]&gt;y &gt; &amp; &lt; &#39;"),
            ("a", "\u{7}\u{B}\u{FFFE}", "\u{FFFD}\u{FFFD}\u{FFFD}"),
            ("a", "&foo;", "&amp;foo;"),
            (
                "&amp;",
                "&lt; & &foo; &f oo; &#1; &#65;&",
                "&lt; &amp; &amp;foo; &amp;f oo; &#xFFFD; &#65;&amp;",
            ),
            ("<b>", "<b>]]></b>", "<b>]]&gt;</b>"),
            ("]]>", "]]>x", "]]&gt;x"),
            ("<b>]]></b>", "]]>", "]]&gt;"),
            ("<b>a</b>", "<![CDATA[<b>]]>", "<![CDATA[<b>]]>"),
        ];
        for (original, translation, markup) in rows {
            assert_eq!(markup, as_markup(original, translation));
        }
    }

    #[test]
    fn unknown_references_are_no_markup() {
        for content in [
            "&foo;",
            "&f oo;",
            "&nbsp;",
            "&AMP;",
            "&1;",
            "&;",
            "& amp;",
            "&amp ;",
            "a & b; c",
            "&&amp;",
            "&lt;&foo;",
            "&a&lt;",
            "&<b>;",
            "&amp&#65;",
            "&слово;",
        ] {
            assert!(checked_markup(content, "a text").is_err(), "{content}");
        }
        for (content, markup) in [
            ("&amp;&#65;&#x41; <b> & AT&T", "&amp;&#65;&#x41; <b> & AT&T"),
            ("&#1;&#xFFFE;&#xD800;&#99999999999;\u{1}", "&#xFFFD;&#xFFFD;&#xFFFD;&#xFFFD;\u{FFFD}"),
            ("&#xZ; &#; &#", "&#xZ; &#; &#"),
        ] {
            assert_eq!(markup, checked_markup(content, "a text").expect("markup"));
        }
    }

    #[test]
    fn stored_texts_keep_their_edges() {
        let stored = |text| stored_text("a", text).expect("a short text");
        assert_eq!("&amp;#32;&amp;#10;a &amp;amp; b&amp;#9;", stored(" \na & b\t"));
        assert_eq!("&amp;#32;", stored(" "));
        assert_eq!("", stored(""));
    }
}
