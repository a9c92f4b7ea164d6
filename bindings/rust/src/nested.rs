// Flat names for the values in objects and lists, by the rules of docs/values.md.
//
// SPDX-License-Identifier: MIT
use std::time::Duration;

use crate::error::Error;
use crate::request::Value;

const DEEPEST_LEVEL: usize = 32;

/// A value, object or list for [`crate::Request::add_nested`].
///
/// ```
/// use strata_repgenlib::Node;
///
/// let errors = Node::list([Node::object([("Address", 16)]), Node::object([("Address", 32)])]);
/// let object = Node::object([("Device", Node::from("Disk 1 & 2")), ("Err", errors)]);
/// ```
///
/// makes the values `Device`, `Err.1.Address` and `Err.2.Address`.
#[derive(Debug, Clone, PartialEq, Eq)]
pub enum Node {
    /// Left out. In a list it has its number all the same.
    Missing,
    /// A value of the report.
    Value(Value),
    /// Entries, whose names are numbers from 1 on.
    List(Vec<Node>),
    /// Named members.
    Object(Vec<(String, Node)>),
}

impl Node {
    /// A list.
    pub fn list<T: Into<Node>>(entries: impl IntoIterator<Item = T>) -> Node {
        Node::List(entries.into_iter().map(Into::into).collect())
    }

    /// An object.
    pub fn object<K: Into<String>, T: Into<Node>>(
        members: impl IntoIterator<Item = (K, T)>,
    ) -> Node {
        Node::Object(members.into_iter().map(|(name, node)| (name.into(), node.into())).collect())
    }
}

macro_rules! node_from_value {
    ($($source:ty),*) => {
        $(impl From<$source> for Node {
            fn from(value: $source) -> Node {
                Node::Value(value.into())
            }
        })*
    };
}

node_from_value!(Value, &str, String, i32, i64, u32, Vec<u8>, &[u8], std::time::SystemTime);

/// The text "true" or "false".
impl From<bool> for Node {
    fn from(truth: bool) -> Node {
        Node::Value(Value::Text(truth.to_string()))
    }
}

macro_rules! node_from_fraction {
    ($($source:ty),*) => {
        $(
            /// The text of the shortest digits that are the same number. NaN is missing; an
            /// infinite number is an error.
            impl TryFrom<$source> for Node {
                type Error = Error;

                fn try_from(number: $source) -> Result<Node, Error> {
                    if number.is_infinite() {
                        return Err(Error::argument_error("an infinite number"));
                    }
                    let node = Node::Value(Value::Text(number.to_string()));
                    Ok(if number.is_nan() { Node::Missing } else { node })
                }
            }
        )*
    };
}

node_from_fraction!(f32, f64);

/// Seconds: a number, or a text if there is a fraction.
impl From<Duration> for Node {
    fn from(duration: Duration) -> Node {
        if duration.subsec_nanos() == 0 {
            return Node::Value(Value::from(duration.as_secs()));
        }
        let text = format!("{}.{:09}", duration.as_secs(), duration.subsec_nanos());
        Node::Value(Value::Text(text.trim_end_matches('0').to_string()))
    }
}

/// `None` is missing.
impl<T: Into<Node>> From<Option<T>> for Node {
    fn from(node: Option<T>) -> Node {
        node.map_or(Node::Missing, Into::into)
    }
}

/// The values of an object, in reading order.
pub(crate) fn flatten(object: &Node) -> Result<Vec<(String, Value)>, Error> {
    let members = match object {
        Node::Object(members) => members,
        _ => return Err(Error::argument_error("the outermost level is not an object")),
    };
    let mut found = Vec::new();
    add_members("", members, 1, &mut found)?;
    Ok(found)
}

fn add_members(
    name: &str,
    members: &[(String, Node)],
    level: usize,
    found: &mut Vec<(String, Value)>,
) -> Result<(), Error> {
    for (key, node) in members {
        if key.is_empty() {
            let message = "a member has an empty name";
            return Err(match name {
                "" => Error::argument_error(message),
                _ => Error::about(name, message),
            });
        }
        let full = if level == 1 { key.clone() } else { format!("{name}.{key}") };
        add(full, node, level, found)?;
    }
    Ok(())
}

/// Adds what a node at a level contains; the outermost object has the level 1.
fn add(
    name: String,
    node: &Node,
    level: usize,
    found: &mut Vec<(String, Value)>,
) -> Result<(), Error> {
    let is_nested = matches!(node, Node::List(_) | Node::Object(_));
    if is_nested && level == DEEPEST_LEVEL {
        return Err(Error::about(&name, "more than 32 levels"));
    }
    match node {
        Node::Missing => Ok(()),
        Node::Value(value) => {
            found.push((name, value.clone()));
            Ok(())
        }
        Node::Object(members) => add_members(&name, members, level + 1, found),
        Node::List(entries) => {
            let numbered = entries.iter().zip(1_usize..);
            numbered
                .map(|(entry, number)| add(format!("{name}.{number}"), entry, level + 1, found))
                .collect()
        }
    }
}
