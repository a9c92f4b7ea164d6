// A host in Rust for the tests: makes one case, whose name is its argument, and says "fine".
//
// SPDX-License-Identifier: MIT
#[path = "rust_host_calls.rs"]
mod calls;
#[path = "rust_host_failures.rs"]
mod failures;
#[path = "rust_host_jobs.rs"]
mod jobs;

use strata_repgenlib::rgen_native::*;
use strata_repgenlib::*;

pub const TYPE: Guid = Guid::new(0xDEADBABE, 0, 0, [0; 8]);

fn main() {
    let name = std::env::args().nth(1).expect("the name of a case");
    let case = match name.as_str() {
        "statuses" => check_statuses,
        "values" => check_values,
        "wrongValues" => failures::check_wrong_values,
        "nested" => calls::check_nested,
        "escaping" => check_escaping,
        "outputs" => calls::check_outputs,
        "openFile" => calls::check_open_file,
        "translation" => calls::check_translation,
        "throwingTranslator" => calls::check_throwing_translator,
        "reentered" => failures::check_reentered,
        "failures" => failures::check_failures,
        "refusals" => failures::check_refusals,
        "persistentData" => calls::check_persistent_data,
        "persistentLimits" => calls::check_persistent_limits,
        "dumpAndSimulation" => calls::check_dump_and_simulation,
        "memory" => calls::check_memory,
        "threads" => calls::check_threads,
        "jobs" => jobs::check_jobs,
        "abandonedGenerator" => jobs::check_abandoned_generator,
        "jobTranslators" => jobs::check_job_translators,
        "wholePdf" => calls::check_whole_pdf,
        "missingPdf" => calls::check_missing_pdf,
        "brokenPdf" => calls::check_broken_pdf,
        "notedPdf" => calls::check_noted_pdf,
        "notedBefore" => calls::check_noted_before,
        "noConverter" => calls::check_no_converter,
        "cancellation" => calls::check_cancellation,
        "cancelledJob" => jobs::check_cancelled_job,
        _ => panic!("no case {name}"),
    };
    case();
    println!("fine");
}

// ---- What the cases share ----------------------------------------------------------------------

pub fn guid(text: &str) -> Guid {
    text.parse().expect("a GUID")
}

pub fn open() -> Generator {
    Generator::new("data").expect("a generator")
}

pub fn text_request(values: Vec<(&str, Value)>) -> Request {
    let mut request = Request::new(TYPE, "txt");
    for (name, value) in values {
        request.add(name, value);
    }
    request
}

pub fn text_report(generator: &Generator, request: &Request) -> String {
    String::from_utf8(generator.generate_bytes(request).expect("a report")).expect("UTF-8")
}

pub fn listing(lines: &[&str]) -> String {
    let rows: Vec<String> = lines.iter().map(|line| format!("[{line}]\n")).collect();
    format!("Values\nEnd\n{}", rows.concat())
}

pub fn one() -> Request {
    text_request(vec![("a", Value::from(1))])
}

pub fn expect_kind<T>(kind: ErrorKind, result: Result<T, Error>) -> Error {
    let error = result.err().expect("an error");
    assert_eq!(kind, error.kind(), "{error}");
    assert!(!error.to_string().is_empty());
    error
}

pub fn expect_status<T>(status: RgenStatus, result: Result<T, Error>) {
    let error = expect_kind(ErrorKind::Status, result);
    assert_eq!(status, error.status());
    assert_eq!(status_name(status), error.name());
    assert_eq!(status_text(status), error.text());
    assert_eq!(status_next_step(status), error.next_step());
}

pub fn expect_argument<T>(result: Result<T, Error>) -> Error {
    expect_kind(ErrorKind::Argument, result)
}

// ---- Statuses, values, texts -------------------------------------------------------------------

fn check_statuses() {
    assert_eq!("RGEN_OK", status_name(0));
    assert_eq!("RGEN_CANCELED", status_name(0x80000001_u32 as i32));
    assert_eq!("", status_name(1));
    assert!(status_causes(1).is_empty());
    assert!(!status_causes(RGEN_E_TEMPLATE_NOT_FOUND).is_empty());
    assert!(!status_next_step(RGEN_E_TEMPLATE_NOT_FOUND).is_empty());
    let loaded = versions().expect("versions");
    assert_eq!(loaded.library, loaded.host);
    assert!(loaded.library_path.is_file() && loaded.host_path.is_file());
    assert_eq!("Template is not found in folder", status_text(RGEN_E_TEMPLATE_NOT_FOUND));
    assert_eq!("Undescribed error", status_text(0xC0990000_u32 as i32));
    assert_eq!(TYPE, guid("{DEADBABE-0000-0000-0000-000000000000}"));
    let other = "01234567-89ab-cdef-0123-456789abcdef";
    assert_eq!(other, guid(other).to_string());
    let types = std::collections::HashSet::from([TYPE, guid(other), TYPE]);
    assert_eq!((2, true), (types.len(), types.contains(&guid(other))));
    let iso = Value::time("2026-03-09T08:14:07-04:00", Hint::DateTime).expect("a time");
    assert_eq!(Value::Integer(1773058447, Hint::DateTime), iso);
    expect_argument(Value::time("1969-01-01T00:00:00Z", Hint::Date));
    for text in ["", "deadbabe", "+eadbabe-0000-0000-0000-000000000000", "{deadbabe-0000}"] {
        assert!(text.parse::<Guid>().is_err());
    }
}

fn check_values() {
    let time = std::time::UNIX_EPOCH + std::time::Duration::from_secs(1773058447);
    let mut request = text_request(vec![
        ("a", Value::from(-5)),
        ("b", Value::Integer(0x186A0, Hint::Address)),
        ("c", time.into()),
        ("d", Value::Integer(1773058447, Hint::Time)),
        ("e", vec![1, 0xAB].into()),
        ("f", Value::Bytes(Vec::new())),
        ("g", "Größe и слово \u{1F4D6}".into()),
        ("h", "earlier".into()),
        ("h", "later".into()),
        ("i", Value::from(i64::MIN)),
        ("k", Value::address(u64::MAX)),
        ("l", Value::from(u64::MAX)),
        ("m", Value::from(7_usize)),
        ("n", Value::from(u32::MAX)),
        ("o", Value::from(&String::from("owned"))),
    ]);
    request.pairs.push(Pair::new("h", "a pair"));
    request.pairs.push(Pair::new("j & k", "another"));
    let lines = [
        "a=-5",
        "b=0x186a0",
        "c= 9.03.2026 08:14:07",
        "d=08:14:07",
        "e=01 AB ",
        "f=",
        "g=Größe и слово \u{1F4D6}",
        "h=later",
        "i=-9223372036854775808",
        "j & k=another",
        "k=0xffffffffffffffff",
        "l=18446744073709551615",
        "m=7",
        "n=4294967295",
        "o=owned",
    ];
    let before = std::time::UNIX_EPOCH - std::time::Duration::from_millis(500);
    assert_eq!(Value::Integer(-1, Hint::DateTime), before.into());
    assert_eq!(listing(&lines), text_report(&open(), &request));
}

fn check_escaping() {
    let mut request = text_request(vec![
        ("a", "x & y &amp; <b> &lt; &#65;".into()),
        ("b", Value::Markup("x &amp; &#65;".to_string())),
    ]);
    request.pairs.push(Pair::new("c", "&&copy;"));
    request.pairs.push(Pair::markup("d", "&lt;"));
    let lines = ["a=x & y &amp; <b> &lt; &#65;", "b=x & A", "c=&&copy;", "d=<"];
    assert_eq!(listing(&lines), text_report(&open(), &request));
}
