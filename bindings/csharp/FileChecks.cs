// What would make the library throw a C++ exception, which ends a host in C#, is asked first: what
// the system refuses becomes an exception of System.IO.
//
// SPDX-License-Identifier: MIT
using System;
using System.IO;

namespace StrataRepgenlib
{
    internal static class FileChecks
    {
        /// <summary>Passes when the system says that something is there or not; throws what it
        /// refuses to say.</summary>
        internal static void RequireReachable(string path)
        {
            if (path.Length == 0) throw new ArgumentException("a path is empty");
            try
            {
                FileAttributes found = File.GetAttributes(path);
                // A link is asked by a name below it: links in a circle lead nowhere.
                if ((found & FileAttributes.ReparsePoint) != 0) File.GetAttributes(path + "/any");
            }
            catch (FileNotFoundException)
            {
            }
            catch (DirectoryNotFoundException)
            {
            }
        }

        /// <summary>The folder is there, and so is the data directory in it, which is made like the
        /// library would.</summary>
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

        /// <summary>The system lets this process look for the template of a format.</summary>
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
