// Values of serde in requests: compared with the nodes of the same values.
//
// SPDX-License-Identifier: MIT
use std::collections::BTreeMap;

use serde::ser::{Serialize, SerializeStruct, Serializer};
use strata_repgenlib::*;

/// What a derived implementation does.
struct Finding {
    address: u64,
    note: Option<&'static str>,
}

impl Serialize for Finding {
    fn serialize<S: Serializer>(&self, serializer: S) -> Result<S::Ok, S::Error> {
        let mut finding = serializer.serialize_struct("Finding", 2)?;
        finding.serialize_field("Address", &self.address)?;
        finding.serialize_field("Note", &self.note)?;
        finding.end()
    }
}

struct Bytes;

impl Serialize for Bytes {
    fn serialize<S: Serializer>(&self, serializer: S) -> Result<S::Ok, S::Error> {
        serializer.serialize_bytes(&[1, 0xAB])
    }
}

/// A variant with a value, and one without.
struct Variant(bool);

impl Serialize for Variant {
    fn serialize<S: Serializer>(&self, serializer: S) -> Result<S::Ok, S::Error> {
        if self.0 {
            return serializer.serialize_newtype_variant("State", 0, "Bad", &7);
        }
        serializer.serialize_unit_variant("State", 1, "Good")
    }
}

fn request() -> Request {
    Request::new(Guid::new(1, 0, 0, [0; 8]), "txt")
}

fn values_of(object: &impl Serialize) -> Vec<(String, Value)> {
    let mut request = request();
    request.add_serialized(object).expect("values");
    request.values
}

fn text(name: &str, text: &str) -> (String, Value) {
    (name.to_string(), text.into())
}

fn number(name: &str, number: i64) -> (String, Value) {
    (name.to_string(), number.into())
}

fn key_of(object: &impl Serialize) -> Option<String> {
    let mut request = request();
    let error = request.add_serialized(object).map(|_| ()).expect_err("a wrong value");
    assert_eq!(ErrorKind::Argument, error.kind());
    error.key().map(str::to_string)
}

fn main() {
    let findings =
        [Finding { address: 16, note: Some("a & b") }, Finding { address: 32, note: None }];
    let expected =
        vec![number("Err.1.Address", 16), text("Err.1.Note", "a & b"), number("Err.2.Address", 32)];
    assert_eq!(expected, values_of(&BTreeMap::from([("Err", findings)])));
    let mixed = BTreeMap::from([("Pair", (1.5, true, 'x', Bytes, 0.1_f32))]);
    let bytes = ("Pair.4".to_string(), Value::Bytes(vec![1, 0xAB]));
    let expected = vec![
        text("Pair.1", "1.5"),
        text("Pair.2", "true"),
        text("Pair.3", "x"),
        bytes,
        text("Pair.5", "0.1"),
    ];
    assert_eq!(expected, values_of(&mixed));
    let states = BTreeMap::from([("A", Variant(true)), ("B", Variant(false))]);
    assert_eq!(vec![number("A.Bad", 7), text("B", "Good")], values_of(&states));
    let numbered = BTreeMap::from([(10, -1)]);
    assert_eq!(vec![number("10", -1)], values_of(&numbered));
    let large = [Finding { address: u64::MAX, note: None }];
    assert_eq!(Some("Err.1.Address".to_string()), key_of(&BTreeMap::from([("Err", large)])));
    assert_eq!(Some("a".to_string()), key_of(&BTreeMap::from([("a", f64::INFINITY)])));
    assert_eq!(None, key_of(&[1, 2]));
}
