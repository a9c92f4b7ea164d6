// The cases of the host in C# about failures.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using StrataRepgenlib;

internal static partial class CSharpHost
{
    private static void CheckReentered()
    {
        Request request = TextRequest(new Value("a", 1));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            List<ReportErrorKind> kinds = new List<ReportErrorKind>();
            generator.SetTranslator(text =>
            {
                Action[] calls =
                {
                    () => generator.GenerateBytes(request), () => generator.Cancel(),
                    () => generator.GetPersistentData(Type), () => generator.SetTranslator(null),
                    () => generator.SetDataDir("data"),
                };
                kinds.AddRange(calls.Select(call => Thrown<ReportException>(call).Kind));
                return text + "x";
            });
            Equal("Valuesx\nEndx\n[a=1]\n", TextReport(generator, request));
            Equal(10, kinds.Count(kind => kind == ReportErrorKind.Reentered));
            kinds.Clear();
            Equal("Valuesx\nEndx\n[a=1]\n",
                  Encoding.UTF8.GetString(generator.GenerateBytesAsync(request).Result));
            Equal(10, kinds.Count(kind => kind == ReportErrorKind.Reentered));
        }
    }

    private static void CheckFailures()
    {
        StatusThrown(RgenStatus.RGEN_E_DIR_NOT_FOUND, () => new ReportGenerator("nothing here"));
        ReportGenerator generator = new ReportGenerator("data");
        Value value = new Value("a", 1);
        StatusThrown(RgenStatus.RGEN_E_EMPTY_INPUT, () => generator.GenerateBytes(TextRequest()));
        Request request = new Request(TypeWithoutTemplate, "txt");
        request.Values.Add(value);
        StatusThrown(RgenStatus.RGEN_E_TEMPLATE_NOT_FOUND, () => generator.GenerateBytes(request));
        StatusThrown(RgenStatus.RGEN_E_GUID_NOT_IN_CONFIG,
                     () => generator.GetPersistentData(UnknownType));
        StatusThrown(RgenStatus.RGEN_E_OVERWRITE_OUTPUT,
                     () => generator.GenerateFile(TextRequest(value), "data"));
        StatusException gone = Thrown<StatusException>(
            () => generator.GenerateFile(TextRequest(value), "gone/x.txt"));
        Equal("gone/x.txt: Cannot create output file (0xC000000C RGEN_E_CREATE_OUTPUT)",
              gone.Message);
        Equal("gone/x.txt", gone.Path);
        Equal(null, gone.Key);
        Thrown<ReportArgumentException>(() => generator.GenerateFile(TextRequest(value), "a\0b"));
        Thrown<ReportArgumentException>(() => new ReportGenerator("half \uD800"));
        Thrown<ReportArgumentException>(
            () => generator.GenerateFile(new Request(Type, "pdf"), "a \" quote.pdf"));
        Request quote = new Request(Type, "pdf") { ConverterBase = "a \" quote" };
        Thrown<ReportArgumentException>(() => generator.GenerateFile(quote, "quote.pdf"));
        ThrowForNull(generator);
        generator.Dispose();
        generator.Dispose();
        Thrown<ObjectDisposedException>(() => generator.GenerateBytes(TextRequest(value)));
        Thrown<ObjectDisposedException>(
            () => generator.GenerateBytesAsync(TextRequest(value)).GetAwaiter().GetResult());
    }

    private static void ThrowForNull(ReportGenerator generator)
    {
        Request request = TextRequest(new Value("a", 1));
        Action[] calls =
        {
            () => new ReportGenerator(null), () => generator.SetDataDir(null),
            () => generator.GenerateFile(null, "x.txt"),
            () => generator.GenerateFile(request, null), () => generator.GenerateBytes(null),
            () => generator.GenerateOpenFile(null, "x.txt"),
            () => generator.GenerateOpenFile(request, null),
            () => request.ConverterBase = null, () => generator.SetPersistentData(Type, null),
            () => generator.SetPersistentValues(Type, null), () => generator.Dump(null, "x.xml"),
            () => generator.Dump(request.Values, null), () => generator.SimulatedInput(null),
        };
        foreach (Action call in calls) Thrown<ArgumentNullException>(call);
    }

    /// <summary>Each of these calls throws a C++ exception inside the library.</summary>
    private static void CheckRefusals()
    {
        FileThrown("closed", () => new ReportGenerator("closed/inside"));
        KindThrown(ReportErrorKind.FileSystem, () => new ReportGenerator(new string('x', 5000)));
        StatusThrown(RgenStatus.RGEN_E_DIR_NOT_FOUND, () => new ReportGenerator(""));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            Request request = TextRequest(new Value("a", 1));
            string longPath = string.Join("/", Enumerable.Repeat(new string('y', 99), 50));
            FileThrown("closed", () => generator.GenerateFile(request, "closed/report.txt"));
            foreach (string path in new[] { new string('x', 400), longPath, "circle.txt" })
            {
                string start = path.Substring(0, 6);
                FileThrown(start, () => generator.GenerateFile(request, path));
                FileThrown(start, () => generator.GenerateFileAsync(request, path)
                                                 .GetAwaiter().GetResult());
            }
            FileThrown("closed", () => generator.SimulatedInput("closed/data.xml"));
            FileThrown("closed", () => generator.Dump(request.Values, "closed/dump.xml"));
            Request format = new Request(Type, new string('f', 400));
            format.Values.AddRange(request.Values);
            FileThrown("fff", () => generator.GenerateBytes(format));
            RefuseFolders(generator, request);
            generator.SetDataDir("linked");
            Equal(Listing("a=1"), TextReport(generator, request));
        }
    }

    private static void RefuseFolders(ReportGenerator generator, Request request)
    {
        foreach (string folder in new[] { "closed", "hidden", "sealed", "with circle",
                                          "with circled configuration", "with circled template",
                                          "with long template" })
        {
            generator.SetDataDir(folder);
            FileThrown("", () => generator.GenerateBytes(request));
            FileThrown("",
                       () => generator.GenerateBytesAsync(request).GetAwaiter().GetResult());
        }
        generator.SetDataDir("with circled data");
        FileThrown("persistent.xml", () => generator.SetPersistentValues(Type, new Value[0]));
        StatusThrown(RgenStatus.RGEN_E_OPEN_PERSIST, () => generator.GetPersistentData(Type));
        foreach (string folder in new[] { "with file", "with fifo", "with link", "whole.bin" })
        {
            generator.SetDataDir(folder);
            Thrown<ReportException>(() => generator.GenerateBytes(request));
        }
    }

    private static void FileThrown(string path, Action action)
    {
        ReportFileException exception = Thrown<ReportFileException>(action);
        Equal(ReportErrorKind.FileSystem, exception.Kind);
        Equal(true, exception.SystemError != 0);
        Equal(true, exception.Path.Contains(path));
    }
}
