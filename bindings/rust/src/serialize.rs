// Makes nodes of values that serde can serialize.
//
// SPDX-License-Identifier: MIT
use std::fmt::Display;

use serde::ser::{self, Serialize};

use crate::error::Error;
use crate::nested::Node;
use crate::request::Value;

type Done = Result<Node, Error>;

impl ser::Error for Error {
    fn custom<T: Display>(message: T) -> Error {
        Error::argument_error(message.to_string())
    }
}

/// The node of a value.
pub(crate) fn node_of(value: &(impl Serialize + ?Sized)) -> Done {
    value.serialize(NodeSerializer)
}

/// The node of a member, whose name is added to errors.
fn member_of(name: &str, value: &(impl Serialize + ?Sized)) -> Result<(String, Node), Error> {
    let node = node_of(value).map_err(|error| error.inside(name))?;
    Ok((name.to_string(), node))
}

/// The object with one member that represents a variant with contents.
fn variant_of(name: &str, node: Node) -> Node {
    Node::Object(vec![(name.to_string(), node)])
}

fn in_variant(variant: Option<&str>, node: Node) -> Node {
    match variant {
        Some(name) => variant_of(name, node),
        None => node,
    }
}

fn text(text: impl Into<String>) -> Done {
    Ok(Node::Value(Value::Text(text.into())))
}

fn integer<T>(number: T) -> Done
where
    i64: TryFrom<T>,
{
    let wide = i64::try_from(number);
    let wide = wide.map_err(|_| Error::argument_error("a number needs more than 64 bits"))?;
    Ok(Node::Value(Value::from(wide)))
}

macro_rules! integers {
    ($($name:ident: $source:ty),*) => {
        $(fn $name(self, number: $source) -> Done {
            integer(number)
        })*
    };
}

struct NodeSerializer;

impl ser::Serializer for NodeSerializer {
    type Ok = Node;
    type Error = Error;
    type SerializeSeq = Entries;
    type SerializeTuple = Entries;
    type SerializeTupleStruct = Entries;
    type SerializeTupleVariant = Entries;
    type SerializeMap = Members;
    type SerializeStruct = Members;
    type SerializeStructVariant = Members;

    integers!(
        serialize_i8: i8, serialize_i16: i16, serialize_i32: i32, serialize_i64: i64,
        serialize_u8: u8, serialize_u16: u16, serialize_u32: u32, serialize_u64: u64,
        serialize_i128: i128, serialize_u128: u128
    );

    fn serialize_bool(self, truth: bool) -> Done {
        Ok(truth.into())
    }

    fn serialize_f32(self, number: f32) -> Done {
        number.try_into()
    }

    fn serialize_f64(self, number: f64) -> Done {
        number.try_into()
    }

    fn serialize_char(self, character: char) -> Done {
        text(character)
    }

    fn serialize_str(self, content: &str) -> Done {
        text(content)
    }

    fn serialize_bytes(self, bytes: &[u8]) -> Done {
        Ok(bytes.into())
    }

    fn serialize_none(self) -> Done {
        Ok(Node::Missing)
    }

    fn serialize_some<T: Serialize + ?Sized>(self, value: &T) -> Done {
        node_of(value)
    }

    fn serialize_unit(self) -> Done {
        Ok(Node::Missing)
    }

    fn serialize_unit_struct(self, _name: &'static str) -> Done {
        Ok(Node::Missing)
    }

    fn serialize_unit_variant(self, _name: &'static str, _: u32, variant: &'static str) -> Done {
        text(variant)
    }

    fn serialize_newtype_struct<T: Serialize + ?Sized>(self, _: &'static str, value: &T) -> Done {
        node_of(value)
    }

    fn serialize_newtype_variant<T: Serialize + ?Sized>(
        self,
        _name: &'static str,
        _index: u32,
        variant: &'static str,
        value: &T,
    ) -> Done {
        let (name, node) = member_of(variant, value)?;
        Ok(variant_of(&name, node))
    }

    fn serialize_seq(self, _length: Option<usize>) -> Result<Entries, Error> {
        Ok(Entries { variant: None, nodes: Vec::new() })
    }

    fn serialize_tuple(self, _length: usize) -> Result<Entries, Error> {
        self.serialize_seq(None)
    }

    fn serialize_tuple_struct(self, _: &'static str, _: usize) -> Result<Entries, Error> {
        self.serialize_seq(None)
    }

    fn serialize_tuple_variant(
        self,
        _name: &'static str,
        _index: u32,
        variant: &'static str,
        _length: usize,
    ) -> Result<Entries, Error> {
        Ok(Entries { variant: Some(variant), nodes: Vec::new() })
    }

    fn serialize_map(self, _length: Option<usize>) -> Result<Members, Error> {
        Ok(Members { variant: None, key: String::new(), members: Vec::new() })
    }

    fn serialize_struct(self, _: &'static str, _: usize) -> Result<Members, Error> {
        self.serialize_map(None)
    }

    fn serialize_struct_variant(
        self,
        _name: &'static str,
        _index: u32,
        variant: &'static str,
        _length: usize,
    ) -> Result<Members, Error> {
        Ok(Members { variant: Some(variant), key: String::new(), members: Vec::new() })
    }
}

/// The entries of a list.
struct Entries {
    variant: Option<&'static str>,
    nodes: Vec<Node>,
}

impl Entries {
    fn add(&mut self, value: &(impl Serialize + ?Sized)) -> Result<(), Error> {
        let number = (self.nodes.len() + 1).to_string();
        self.nodes.push(member_of(&number, value)?.1);
        Ok(())
    }

    fn done(self) -> Done {
        Ok(in_variant(self.variant, Node::List(self.nodes)))
    }
}

/// The members of an object.
struct Members {
    variant: Option<&'static str>,
    key: String,
    members: Vec<(String, Node)>,
}

impl Members {
    fn add(&mut self, name: &str, value: &(impl Serialize + ?Sized)) -> Result<(), Error> {
        self.members.push(member_of(name, value)?);
        Ok(())
    }

    fn done(self) -> Done {
        Ok(in_variant(self.variant, Node::Object(self.members)))
    }
}

macro_rules! entries {
    ($($kind:ident $add:ident),*) => {
        $(impl ser::$kind for Entries {
            type Ok = Node;
            type Error = Error;

            fn $add<T: Serialize + ?Sized>(&mut self, value: &T) -> Result<(), Error> {
                self.add(value)
            }

            fn end(self) -> Done {
                self.done()
            }
        })*
    };
}

entries!(
    SerializeSeq serialize_element,
    SerializeTuple serialize_element,
    SerializeTupleStruct serialize_field,
    SerializeTupleVariant serialize_field
);

macro_rules! members {
    ($($kind:ident),*) => {
        $(impl ser::$kind for Members {
            type Ok = Node;
            type Error = Error;

            fn serialize_field<T: Serialize + ?Sized>(
                &mut self,
                name: &'static str,
                value: &T,
            ) -> Result<(), Error> {
                self.add(name, value)
            }

            fn end(self) -> Done {
                self.done()
            }
        })*
    };
}

members!(SerializeStruct, SerializeStructVariant);

impl ser::SerializeMap for Members {
    type Ok = Node;
    type Error = Error;

    fn serialize_key<T: Serialize + ?Sized>(&mut self, key: &T) -> Result<(), Error> {
        self.key = match node_of(key)? {
            Node::Value(Value::Text(name)) => name,
            Node::Value(Value::Integer(number, _)) => number.to_string(),
            _ => return Err(Error::argument_error("a name is neither a text nor a number")),
        };
        Ok(())
    }

    fn serialize_value<T: Serialize + ?Sized>(&mut self, value: &T) -> Result<(), Error> {
        let name = std::mem::take(&mut self.key);
        self.add(&name, value)
    }

    fn end(self) -> Done {
        self.done()
    }
}
