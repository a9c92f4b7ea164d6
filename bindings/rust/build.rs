// Tells the linker where the library is: in the folder STRATA_REPGENLIB_DIR, or else in the
// installation that contains this crate, or in the linker's own folders.
//
// SPDX-License-Identifier: MIT
use std::env;
use std::path::{Path, PathBuf};

const FILE_NAMES: [&str; 3] =
    ["libstrata_repgenlib.so", "libstrata_repgenlib.dll.a", "strata_repgenlib.lib"];

/// The folders for libraries of an installation with share/strata_repgenlib/bindings/rust.
fn installed_folders() -> Vec<PathBuf> {
    let crate_folder = PathBuf::from(env::var_os("CARGO_MANIFEST_DIR").unwrap_or_default());
    match crate_folder.ancestors().nth(4) {
        Some(prefix) => vec![prefix.join("lib"), prefix.join("lib/x86_64-linux-gnu")],
        None => Vec::new(),
    }
}

fn has_library(folder: &Path) -> bool {
    FILE_NAMES.iter().any(|name| folder.join(name).exists())
}

fn main() {
    println!("cargo:rerun-if-env-changed=STRATA_REPGENLIB_DIR");
    let folder = match env::var_os("STRATA_REPGENLIB_DIR") {
        Some(named) => Some(PathBuf::from(named)),
        None => installed_folders().into_iter().find(|folder| has_library(folder)),
    };
    if let Some(folder) = folder {
        println!("cargo:rustc-link-search=native={}", folder.display());
    }
}
