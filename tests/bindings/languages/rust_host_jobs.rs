// The cases of the host in Rust about jobs.
//
// SPDX-License-Identifier: MIT
use std::fs;
use std::io::{Read, Seek, SeekFrom};
use std::path::Path;
use std::sync::mpsc::channel;
use std::thread;
use std::time::Duration;

use super::*;

const LONG: Duration = Duration::from_secs(3600);

fn text_of(job: Job<Vec<u8>>) -> String {
    String::from_utf8(job.take().expect("a report")).expect("UTF-8")
}

fn is_sendable<T: Send + Sync>(_: &T) {}

pub fn check_jobs() {
    let generator = open();
    is_sendable(&generator);
    let job = generator.start_file(&one(), "job.txt").expect("a job");
    is_sendable(&job);
    assert!(job.wait(LONG).expect("no error"));
    assert!(job.wait(Duration::ZERO).expect("no error"));
    job.take().expect("a report");
    assert_eq!(listing(&["a=1"]), fs::read_to_string("job.txt").expect("a report"));
    let jobs: Vec<Job<Vec<u8>>> = (0..20)
        .map(|number| text_request(vec![("a", Value::from(number))]))
        .map(|request| generator.start_bytes(&request).expect("a job"))
        .collect();
    for (number, job) in jobs.into_iter().enumerate() {
        let text = thread::spawn(|| text_of(job)).join().expect("no panic");
        assert_eq!(listing(&[&format!("a={number}")]), text);
    }
    let mut file =
        generator.start_open_file(&one(), "open.txt").expect("a job").take().expect("a file");
    file.seek(SeekFrom::Start(0)).expect("a start");
    let mut text = String::new();
    file.read_to_string(&mut text).expect("a text");
    assert_eq!(listing(&["a=1"]), text);
    drop(generator.start_open_file(&one(), "open.txt").expect("a job"));
    let empty = generator.start_bytes(&text_request(vec![])).expect("a job");
    expect_status(RGEN_E_EMPTY_INPUT, empty.take());
    // A job keeps what it uses.
    let last = generator.start_bytes(&one()).expect("a job");
    drop(generator);
    assert_eq!(listing(&["a=1"]), text_of(last));
}

pub fn check_abandoned_generator() {
    let generator = open();
    assert_eq!(listing(&["a=1"]), text_of(generator.start_bytes(&one()).expect("a job")));
    std::mem::forget(generator);
}

pub fn check_job_translators() {
    let (begin, begun) = channel();
    let (allow, allowed) = channel::<()>();
    let mut generator = open();
    let waiting = move |text: &str| {
        let _ = begin.send(());
        let _ = allowed.recv();
        format!("{text} 1")
    };
    generator.set_translator(waiting).expect("a translator");
    let first = generator.start_bytes(&one()).expect("a job");
    begun.recv().expect("a begin");
    generator.set_translator(|text| format!("{text} 2")).expect("a translator");
    assert!(!first.wait(Duration::ZERO).expect("no error"));
    drop(allow);
    assert_eq!("Values 1\nEnd 1\n[a=1]\n", text_of(first));
    let second = generator.start_bytes(&one()).expect("a job");
    assert_eq!("Values 2\nEnd 2\n[a=1]\n", text_of(second));
}

pub fn check_cancelled_job() {
    let generator = open();
    let mut request = Request::new(TYPE, "pdf");
    request.add("a", 1);
    let job = generator.start_file(&request, "never.pdf").expect("a job");
    while !Path::new("started.log").exists() {
        thread::yield_now();
    }
    // Another report of the generator, which is not cancelled with it.
    let other = generator.start_bytes(&one()).expect("a job");
    job.cancel();
    assert!(job.take().expect_err("cancelled").is_cancellation());
    assert_eq!(listing(&["a=1"]), text_of(other));
}
