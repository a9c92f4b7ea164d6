// Checks before calls of the library, whose C++ exceptions would end a host in C#: they throw
// exceptions of System.IO instead.
//
// SPDX-License-Identifier: MIT
using System;
using System.IO;

namespace StrataRepgenlib
{
    internal static class FileChecks
    {
        /// <summary>Throws unless the system can tell whether the path exists.</summary>
        internal static void RequireReachable(string path)
        {
            if (path.Length == 0) throw new ArgumentException("a path is empty");
            try
            {
                FileAttributes found = File.GetAttributes(path);
                // A name inside a link is queried: this fails for a loop of links.
                if ((found & FileAttributes.ReparsePoint) != 0) File.GetAttributes(path + "/any");
            }
            catch (FileNotFoundException)
            {
            }
            catch (DirectoryNotFoundException)
            {
            }
        }

        /// <summary>Checks that the folder exists, and makes the data directory in it as the
        /// library does.</summary>
        internal static void RequireDataDir(string folder)
        {
            if (!Directory.Exists(folder))
            {
                throw new DirectoryNotFoundException(
                    folder + ": the folder of the data directory is gone or no folder");
            }
            string dataDir = Path.Combine(folder, ".rgen");
            if (!Directory.Exists(dataDir)) Directory.CreateDirectory(dataDir);
            if (!Directory.Exists(dataDir))
            {
                throw new IOException(dataDir + ": the data directory is no folder");
            }
            RequireReachable(Path.Combine(dataDir, "config.xml"));
        }

        /// <summary>Checks that this process may look for the template of a format.</summary>
        internal static void RequireTemplates(string folder, string format)
        {
            string templates = Path.Combine(Path.Combine(folder, ".rgen"), "templates");
            RequireReachable(templates + "/" + format + "/any.xsl");
        }

        internal static void RequireOutput(string output, bool converts, string converterBase)
        {
            if (output == null) throw new ArgumentNullException(nameof(output));
            RequireReachable(output);
            if (!converts) return;
            RequireReachable(output + ".html");
            if (output.IndexOf('"') >= 0 || converterBase.IndexOf('"') >= 0)
            {
                throw new ArgumentException("a path for the converter holds a double quote");
            }
        }
    }
}
