// The cases of the host in Rust about failures.
//
// SPDX-License-Identifier: MIT
use std::ffi::OsStr;
use std::os::unix::ffi::OsStrExt;
use std::path::Path;
use std::sync::{Arc, Mutex, Weak};
use std::time::{Duration, UNIX_EPOCH};

use super::*;

const UNKNOWN: &str = "66666666-7777-8888-9999-aaaaaaaaaaaa";

/// Each is refused with its name.
pub fn check_wrong_values() {
    let generator = open();
    let key_of = |name: &str, value: Value| {
        let request = text_request(vec![("good", 1.into()), (name, value)]);
        let error = expect_argument(generator.generate_bytes(&request));
        assert!(error.to_string().starts_with('"'), "{error}");
        error.key().map(str::to_string)
    };
    let before = UNIX_EPOCH - Duration::from_millis(500);
    for time in [before, UNIX_EPOCH + Duration::from_secs(32_535_216_000)] {
        assert_eq!(Some("time".to_string()), key_of("time", time.into()));
    }
    for hint in [Hint::Time, Hint::Date] {
        assert_eq!(Some("time".to_string()), key_of("time", Value::Integer(-1, hint)));
    }
    let values = [("time".to_string(), Value::from(before))];
    expect_argument(generator.set_persistent_values(&TYPE, &values));
    assert_eq!(Some("zero".to_string()), key_of("zero", "a \0 b".into()));
    let mut request = one();
    request.pairs.push(Pair::new("first", "1"));
    request.pairs.push(Pair::new("pair", "\0"));
    assert_eq!(Some("pair"), expect_argument(generator.generate_bytes(&request)).key());
    request = text_request(vec![("a\0b", 1.into())]);
    assert_eq!(Some("a\0b"), expect_argument(generator.generate_bytes(&request)).key());
}

pub fn check_reentered() {
    let slot = Arc::new(Mutex::new(Weak::<Generator>::new()));
    let kinds = Arc::new(Mutex::new(Vec::new()));
    let (inside, found) = (slot.clone(), kinds.clone());
    let mut generator = open();
    let calling = move |text: &str| {
        let generator = inside.lock().expect("a slot").upgrade().expect("a generator");
        let mut found = found.lock().expect("a list");
        found.push(generator.generate_bytes(&one()).err().map(|error| error.kind()));
        found.push(generator.cancel().err().map(|error| error.kind()));
        found.push(generator.persistent_data(&TYPE).err().map(|error| error.kind()));
        format!("{text}x")
    };
    generator.set_translator(calling).expect("a translator");
    let generator = Arc::new(generator);
    *slot.lock().expect("a slot") = Arc::downgrade(&generator);
    let expected = "Valuesx\nEndx\n[a=1]\n";
    assert_eq!(expected, text_report(&generator, &one()));
    let report = generator.start_bytes(&one()).expect("a job").take().expect("a report");
    assert_eq!(expected, String::from_utf8(report).expect("UTF-8"));
    assert_eq!(vec![Some(ErrorKind::Reentered); 12], *kinds.lock().expect("a list"));
}

pub fn check_failures() {
    expect_status(RGEN_E_DIR_NOT_FOUND, Generator::new("nothing here"));
    expect_status(RGEN_E_DIR_NOT_FOUND, Generator::new(""));
    let generator = open();
    expect_status(RGEN_E_EMPTY_INPUT, generator.generate_bytes(&text_request(vec![])));
    let mut request = Request::new(guid("11111111-2222-3333-4444-555555555555"), "txt");
    request.add("a", 1);
    expect_status(RGEN_E_TEMPLATE_NOT_FOUND, generator.generate_bytes(&request));
    expect_status(RGEN_E_GUID_NOT_IN_CONFIG, generator.persistent_data(&guid(UNKNOWN)));
    expect_status(RGEN_E_OVERWRITE_OUTPUT, generator.generate_file(&one(), "data"));
    let error = generator.generate_file(&one(), "gone/x.txt").expect_err("no folder");
    assert_eq!(
        "gone/x.txt: Cannot create output file (0xC000000C RGEN_E_CREATE_OUTPUT)",
        error.to_string()
    );
    assert_eq!(RGEN_E_CREATE_OUTPUT, error.status());
    assert_eq!(Some(Path::new("gone/x.txt")), error.path());
    assert_eq!((None, None), (error.key(), error.argument()));
    expect_argument(generator.generate_file(&Request::new(TYPE, "pdf"), "a \" quote.pdf"));
    let no_utf8 = OsStr::from_bytes(b"a \xFF b");
    expect_kind(ErrorKind::Encoding, generator.generate_file(&one(), no_utf8));
    expect_argument(generator.generate_file(&one(), "a\0b"));
    expect_argument(generator.simulated_input("a\0b"));
    expect_argument(Generator::new("a\0b"));
}

fn expect_file_error<T>(path: &str, result: Result<T, Error>) {
    let error = expect_kind(ErrorKind::FileSystem, result);
    assert!(error.system_error().is_some());
    assert!(error.path().expect("a path").to_string_lossy().contains(path), "{error}");
}

/// Each of these calls throws a C++ exception inside the library.
pub fn check_refusals() {
    expect_file_error("closed", Generator::new("closed/inside"));
    expect_file_error("xxx", Generator::new("x".repeat(5000)));
    let mut generator = open();
    expect_file_error("closed", generator.generate_file(&one(), "closed/report.txt"));
    let long_path = vec!["y".repeat(99); 50].join("/");
    for path in [&"x".repeat(400), &long_path, "circle.txt"] {
        expect_file_error(&path[..6], generator.generate_file(&one(), path));
        let job = generator.start_file(&one(), path).expect("a job");
        expect_file_error(&path[..6], job.take());
    }
    expect_file_error("closed", generator.simulated_input("closed/data.xml"));
    expect_file_error("closed", generator.dump(&one().values, "closed/dump.xml"));
    let mut format = Request::new(TYPE, "f".repeat(400));
    format.add("a", 1);
    expect_file_error("fff", generator.generate_bytes(&format));
    refuse_folders(&mut generator);
    generator.set_data_dir("linked").expect("a folder");
    assert_eq!(listing(&["a=1"]), text_report(&generator, &one()));
}

fn refuse_folders(generator: &mut Generator) {
    let odd = ["circle", "circled configuration", "circled template", "long template"];
    let odd = odd.map(|name| format!("with {name}"));
    for folder in odd.iter().map(String::as_str).chain(["closed", "sealed", "hidden"]) {
        generator.set_data_dir(folder).expect("a folder");
        expect_file_error("", generator.generate_bytes(&one()));
        expect_file_error("", generator.start_bytes(&one()).expect("a job").take());
    }
    generator.set_data_dir("with circled data").expect("a folder");
    expect_file_error("persistent.xml", generator.set_persistent_values(&TYPE, &[]));
    expect_status(RGEN_E_OPEN_PERSIST, generator.persistent_data(&TYPE));
    for folder in ["with file", "with fifo", "with link", "whole.bin"] {
        generator.set_data_dir(folder).expect("a folder or file");
        assert!(generator.generate_bytes(&one()).is_err());
    }
}
