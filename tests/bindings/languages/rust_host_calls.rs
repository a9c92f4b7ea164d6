// The cases of the host in Rust about outputs, translators, stored data and the converter.
//
// SPDX-License-Identifier: MIT
use std::collections::BTreeMap;
use std::fs;
use std::io::{Read, Seek, SeekFrom};
use std::panic::{catch_unwind, set_hook, AssertUnwindSafe};
use std::path::Path;
use std::sync::{Arc, Mutex};
use std::thread;
use std::time::Duration;

use super::*;

// ---- Outputs -----------------------------------------------------------------------------------

pub fn check_outputs() {
    let mut request = Request::new(TYPE, "html");
    request.add("a", "x & y");
    let generator = open();
    generator.generate_file(&request, "отчёт.html").expect("a file");
    let page = fs::read_to_string("отчёт.html").expect("a page");
    assert!(page.contains("<p>x &amp; y</p>"));
    assert_eq!(page, text_report(&generator, &request));
}

pub fn check_open_file() {
    let mut file = open().generate_open_file(&one(), "open.txt").expect("a file");
    assert!(!Path::new("open.txt").exists());
    let mut text = String::new();
    file.seek(SeekFrom::Start(0)).expect("a start");
    file.read_to_string(&mut text).expect("a text");
    assert_eq!(listing(&["a=1"]), text);
}

// ---- Translators -------------------------------------------------------------------------------

pub fn check_translation() {
    let asked = Arc::new(Mutex::new(Vec::new()));
    let list = asked.clone();
    let mut generator = open();
    generator
        .set_translator(move |text| {
            list.lock().expect("a list").push(text.to_string());
            if text == "End" {
                text.to_string()
            } else {
                "Größe & <слово>".to_string()
            }
        })
        .expect("a translator");
    let generator = Box::new(generator);
    assert_eq!("Größe & <слово>\nEnd\n[a=1]\n", text_report(&generator, &one()));
    assert_eq!(vec!["Values", "End"], *asked.lock().expect("a list"));
    let mut generator = *generator;
    generator.set_markup_translator(|_| "&#65;".to_string()).expect("a translator");
    assert_eq!("A\nA\n[a=1]\n", text_report(&generator, &one()));
    generator.set_translator(|text| format!("]]>\u{7}&nbsp;{text}")).expect("a translator");
    let expected = "]]>\u{FFFD}&nbsp;Values\n]]>\u{FFFD}&nbsp;End\n[a=1]\n";
    assert_eq!(expected, text_report(&generator, &one()));
    generator.clear_translator().expect("no translator");
    assert_eq!(listing(&["a=1"]), text_report(&generator, &one()));
    assert_eq!(1, Arc::strong_count(&asked));
    let list = asked.clone();
    generator
        .set_translator(move |text| {
            list.lock().expect("a list").push(text.to_string());
            "it's & 'so'".to_string()
        })
        .expect("a translator");
    let mut request = Request::new(guid("22222222-3333-4444-5555-666666666666"), "txt");
    request.add("a", 1);
    let page = text_report(&generator, &request);
    assert_eq!("<p lang=\"it's &amp; 'so'\"></p>", page.trim());
    drop(generator);
    assert_eq!(1, Arc::strong_count(&asked));
}

fn panic_of<T>(call: impl FnOnce() -> T) -> String {
    match catch_unwind(AssertUnwindSafe(call)) {
        Ok(_) => String::new(),
        Err(payload) => match payload.downcast::<String>() {
            Ok(text) => *text,
            Err(other) => other.downcast_ref::<&str>().unwrap_or(&"a longer text").to_string(),
        },
    }
}

pub fn check_throwing_translator() {
    set_hook(Box::new(|_| ()));
    let calls = Arc::new(Mutex::new(0));
    let counter = calls.clone();
    let mut generator = open();
    let panicking = move |_: &str| -> String {
        *counter.lock().expect("a number") += 1;
        panic!("on purpose")
    };
    generator.set_translator(panicking).expect("a translator");
    assert_eq!("on purpose", panic_of(|| generator.generate_bytes(&one())));
    assert_eq!(1, *calls.lock().expect("a number"));
    assert_eq!("on purpose", panic_of(|| generator.generate_open_file(&one(), "x.txt")));
    let job = generator.start_bytes(&one()).expect("a job");
    assert_eq!("on purpose", panic_of(|| job.take()));
    drop(generator.start_bytes(&one()).expect("a job"));
    generator.set_markup_translator(|_| "a&nbsp;b".to_string()).expect("a translator");
    expect_kind(ErrorKind::Callback, generator.generate_bytes(&one()));
    // A failure in the translator of one generator does not reach that of another.
    let mut inner = open();
    inner.set_translator(|_| "a\0b".to_string()).expect("a translator");
    let calling = move |text: &str| {
        let error = expect_argument(inner.generate_bytes(&one()));
        assert_eq!("a translation contains a zero byte", error.to_string());
        text.to_string()
    };
    generator.set_translator(calling).expect("a translator");
    assert_eq!(listing(&["a=1"]), text_report(&generator, &one()));
}

// ---- Objects and lists -------------------------------------------------------------------------

pub fn check_nested() {
    let mut request = text_request(vec![]);
    let long = Node::from(Duration::from_millis(1500));
    let object = Node::object([
        ("Device", Node::object([("Model", Node::from("T & 1")), ("On", true.into())])),
        ("Err", Node::list([Node::object([("Address", 16)]), Node::object([("Address", 32)])])),
        ("Row", Node::list([Node::list([7, 8]), Node::list([9])])),
        ("Note", Node::list([Some("a"), None, Some("c")])),
        ("Ten", Node::object([("10", Value::Integer(16, Hint::Address))])),
        ("Empty", Node::List(vec![])),
        ("None", Node::Missing),
        ("NaN", f64::NAN.try_into().expect("nothing")),
        ("Small", 1.5e-7_f64.try_into().expect("a number")),
        ("Tenth", 0.1_f32.try_into().expect("a number")),
        ("Long", long),
        ("Longer", Duration::from_secs(120).into()),
        ("Bytes", vec![1_u8, 0xAB].into()),
        ("a.b", 3.into()),
    ]);
    request.add_nested(&object).expect("values");
    let lines = [
        "Bytes=01 AB ",
        "Device.Model=T & 1",
        "Device.On=true",
        "Err.1.Address=16",
        "Err.2.Address=32",
        "Long=1.5",
        "Longer=120",
        "Note.1=a",
        "Note.3=c",
        "Row.1.1=7",
        "Row.1.2=8",
        "Row.2.1=9",
        "Small=0.00000015",
        "Ten.10=0x10",
        "Tenth=0.1",
        "a.b=3",
    ];
    assert_eq!(listing(&lines), text_report(&open(), &request));
    check_wrong_nesting(&mut request);
}

fn check_wrong_nesting(request: &mut Request) {
    let deep = (0..32).fold(Node::from(1), |node, _| Node::list([node]));
    let levels = "a".to_string() + &".1".repeat(31);
    for (node, key) in [(Node::object([("", 1)]), "a"), (deep, levels.as_str())] {
        let error = expect_argument(request.add_nested(&Node::object([("a", node)])));
        assert_eq!(Some(key), error.key());
    }
    expect_argument(request.add_nested(&Node::list([1])));
    expect_argument(Node::try_from(f64::INFINITY));
}

// ---- Stored data -------------------------------------------------------------------------------

pub fn check_persistent_data() {
    let rows = [
        ("a", "x & y"),
        ("b", "&amp; &lt;"),
        ("c", " edges\n"),
        ("d", "&amp;amp; <b>"),
        ("e", "Größe"),
        ("f & g", "&copy;"),
    ];
    let texts: BTreeMap<String, String> =
        rows.iter().map(|(name, text)| (name.to_string(), text.to_string())).collect();
    let generator = open();
    expect_status(RGEN_E_OPEN_PERSIST, generator.persistent_data(&TYPE));
    generator.set_persistent_data(&TYPE, rows).expect("stored");
    assert_eq!(texts, generator.persistent_data(&TYPE).expect("texts"));
    let lines: Vec<String> = texts.iter().map(|(name, text)| format!("{name}={text}")).collect();
    let lines: Vec<&str> = lines.iter().map(String::as_str).collect();
    assert_eq!(listing(&lines), text_report(&generator, &text_request(vec![])));
    let values =
        [("n".to_string(), Value::Integer(16, Hint::Address)), ("t".to_string(), "x & y".into())];
    generator.set_persistent_values(&TYPE, &values).expect("stored");
    let stored = generator.persistent_data(&TYPE).expect("texts");
    assert_eq!(("0x10", "x & y"), (stored["n"].as_str(), stored["t"].as_str()));
    generator.set_persistent_data(&TYPE, BTreeMap::<String, String>::new()).expect("stored");
    assert!(generator.persistent_data(&TYPE).expect("texts").is_empty());
}

fn stored_text(generator: &Generator, name: &str) -> String {
    let mut stored = generator.persistent_data(&TYPE).expect("texts");
    assert_eq!("x & y", stored["other"]);
    stored.remove(name).expect("a text")
}

/// Texts that the library would cut, or that would make it lose others.
pub fn check_persistent_limits() {
    const LONGEST: usize = 10_000_000;
    let generator = open();
    let other = ("other".to_string(), Value::from("x & y"));
    let texts = [("a\u{FFFE}", "\u{FFFF}a\u{1}"), ("other", "x & y")];
    generator.set_persistent_data(&TYPE, texts).expect("stored");
    assert_eq!("\u{FFFD}a\u{FFFD}", stored_text(&generator, "a\u{FFFD}"));
    let markup = Value::Markup("\u{FFFE}&amp;amp;&#xFFFE;".to_string());
    let values = [other.clone(), ("b\u{FFFF}".to_string(), markup)];
    generator.set_persistent_values(&TYPE, &values).expect("stored");
    assert_eq!("\u{FFFD}&\u{FFFD}", stored_text(&generator, "b\u{FFFD}"));
    for content in ["&foo;", "&f oo;", "a & b; c"] {
        let unknown = ("b".to_string(), Value::Markup(content.to_string()));
        expect_argument(generator.set_persistent_values(&TYPE, &[unknown]));
    }
    let text = "&".to_string() + &"x".repeat(LONGEST - 5);
    let texts = [("long", text.as_str()), ("other", "x & y")];
    generator.set_persistent_data(&TYPE, texts).expect("stored");
    assert!(text == stored_text(&generator, "long"));
    let longer = text.clone() + "x";
    expect_argument(generator.set_persistent_data(&TYPE, [("long", longer.as_str())]));
    for (name, value) in [
        ("long".to_string(), Value::Text(longer)),
        ("long".to_string(), Value::Markup("x".repeat(LONGEST + 1))),
        ("long".to_string(), Value::Bytes(vec![0; LONGEST / 3 + 1])),
        ("n".repeat(1_000_001), Value::from(1)),
    ] {
        let error =
            expect_argument(generator.set_persistent_values(&TYPE, &[(name.clone(), value)]));
        assert_eq!(Some(name.as_str()), error.key());
    }
    assert!(text == stored_text(&generator, "long"));
    let name = "\"".repeat(1_000_000);
    let values = [other, (name.clone(), Value::Bytes(vec![0; LONGEST / 3]))];
    generator.set_persistent_values(&TYPE, &values).expect("stored");
    assert_eq!(LONGEST - 2, stored_text(&generator, &name).len());
}

pub fn check_dump_and_simulation() {
    let generator = open();
    generator.dump(&[("a".to_string(), "x & y".into())], "dump.xml").expect("a dump");
    let dump = fs::read_to_string("dump.xml").expect("a text");
    assert!(dump.contains("<property name=\"a\">x &amp; y<"));
    generator.dump(&[], "empty.xml").expect("an empty dump");
    let values: BTreeMap<String, Value> =
        generator.simulated_input("simulated.xml").expect("values").into_iter().collect();
    assert_eq!(3, values.len());
    assert_eq!(Value::Integer(12, Hint::Size), values["Number"]);
    assert_eq!(Value::from("a & b"), values["Text"]);
    assert_eq!(Value::Bytes(vec![1, 0xAB]), values["Bytes"]);
    assert!(generator.simulated_input("nothing.xml").expect("nothing").is_empty());
}

fn resident_pages() -> i64 {
    let text = fs::read_to_string("/proc/self/statm").expect("figures");
    text.split(' ').nth(1).and_then(|pages| pages.parse().ok()).expect("a number")
}

/// Each report has a MiB of the library's; 40 of them would show.
pub fn check_memory() {
    let mut request = text_request(vec![
        ("a", "x".repeat(1 << 18).into()),
        ("b", Value::Bytes(vec![0; 1 << 16])),
    ]);
    request.pairs.push(Pair::new("c", "y".repeat(1 << 18)));
    let mut before = 0;
    let mut generator = open();
    for i in 0..50 {
        if i == 10 {
            before = resident_pages();
        }
        generator.set_translator(|_| "t".repeat(1 << 18)).expect("a translator");
        generator.set_persistent_data(&TYPE, [("d", "z".repeat(1 << 18))]).expect("stored");
        generator.persistent_data(&TYPE).expect("texts");
        generator.generate_bytes(&request).expect("a report");
        generator.start_bytes(&request).expect("a job").take().expect("a report");
    }
    let growth = resident_pages() - before;
    assert!(growth <= 6 * 256, "grown by so many pages: {growth}");
}

pub fn check_threads() {
    let mut generator = open();
    generator.set_translator(|text| text.to_string()).expect("a translator");
    thread::scope(|scope| {
        for number in 0..4 {
            let generator = &generator;
            scope.spawn(move || {
                for i in 0..50 {
                    let value = number * 1000 + i;
                    let request = text_request(vec![("a", value.into())]);
                    let line = format!("a={value}");
                    assert_eq!(listing(&[&line]), text_report(generator, &request));
                }
            });
        }
    });
}

// ---- The converter -----------------------------------------------------------------------------

fn make_pdf(output: &str, convert: bool) -> Result<(), Error> {
    let mut request = Request::new(TYPE, "pdf");
    request.add("a", 1);
    request.convert = convert;
    open().generate_file(&request, output)
}

pub fn check_whole_pdf() {
    make_pdf("whole.pdf", true).expect("a pdf");
    make_pdf("page.pdf", false).expect("a page");
    assert!(fs::read_to_string("page.pdf").expect("a page").contains("<p>1</p>"));
}

pub fn check_missing_pdf() {
    let error = expect_kind(ErrorKind::Conversion, make_pdf("missing.pdf", true));
    assert_eq!(Some(Path::new("missing.pdf")), error.path());
    assert_eq!(RGEN_E_EXTERNAL_FAILED, error.status());
    let text = "missing.pdf: the converter made no file: no engine is there";
    assert_eq!(text, error.to_string());
}

pub fn check_broken_pdf() {
    let text = "broken.pdf: the converter's file is not a whole pdf";
    assert_eq!(text, make_pdf("broken.pdf", true).expect_err("no pdf").to_string());
}

pub fn check_noted_pdf() {
    let text = "noted.pdf: the converter failed: a page about a failure";
    assert_eq!(text, make_pdf("noted.pdf", true).expect_err("no pdf").to_string());
}

/// What an earlier conversion left does not speak against this one.
pub fn check_noted_before() {
    fs::write("whole.pdf.error.txt", "an earlier failure").expect("a note");
    make_pdf("whole.pdf", true).expect("a pdf");
    assert!(!Path::new("whole.pdf.error.txt").exists());
}

pub fn check_no_converter() {
    expect_status(RGEN_E_RUN_EXTERNAL, make_pdf("none.pdf", true));
}

pub fn check_cancellation() {
    let mut request = Request::new(TYPE, "pdf");
    request.add("a", 1);
    let generator = open();
    thread::scope(|scope| {
        let running = scope.spawn(|| generator.generate_file(&request, "never.pdf"));
        while !Path::new("started.log").exists() {
            thread::yield_now();
        }
        generator.cancel_type(&guid("66666666-7777-8888-9999-aaaaaaaaaaaa")).expect("done");
        generator.cancel_type(&TYPE).expect("done");
        let error = running.join().expect("no panic").expect_err("cancelled");
        assert!(error.is_cancellation());
    });
    generator.cancel().expect("done");
}
