// The cases of the host in C# about outputs, translators and stored data.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Threading;
using StrataRepgenlib;

internal static partial class CSharpHost
{
    // ---- Outputs ------------------------------------------------------------------------------

    private static void CheckOutputs()
    {
        Request request = new Request(Type, "html");
        request.Values.Add(new Value("a", "x & y"));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.GenerateFile(request, "отчёт.html");
            string page = File.ReadAllText("отчёт.html");
            Equal(true, page.Contains("<p>x &amp; y</p>"));
            Equal(page, TextReport(generator, request));
        }
    }

    private static void CheckOpenFile()
    {
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            string descriptor;
            using (OpenFile file =
                       generator.GenerateOpenFile(TextRequest(new Value("a", 1)), "open.txt"))
            {
                descriptor = "/proc/self/fd/" + file.DangerousGetHandle();
                Equal(false, File.Exists("open.txt"));
                Equal(Listing("a=1"), File.ReadAllText(descriptor));
            }
            Thrown<FileNotFoundException>(() => File.ReadAllText(descriptor));
        }
    }

    // ---- Translators --------------------------------------------------------------------------

    private static void CheckTranslation()
    {
        Request request = TextRequest(new Value("a", 1));
        List<string> asked = new List<string>();
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.SetTranslator(text =>
            {
                asked.Add(text);
                GC.Collect();
                return text == "End" ? null : "Größe & <слово>";
            });
            GC.Collect();
            Equal("Größe & <слово>\nEnd\n[a=1]\n", TextReport(generator, request));
            Equal("Values,End", string.Join(",", asked));
            generator.SetTranslator(text => "&#65;", true);
            Equal("A\nA\n[a=1]\n", TextReport(generator, request));
            generator.SetTranslator(text => "a&nbsp;b", true);
            KindThrown(ReportErrorKind.Callback, () => generator.GenerateBytes(request));
            generator.SetTranslator(text => "]]>\a&nbsp;" + text);
            Equal("]]>\uFFFD&nbsp;Values\n]]>\uFFFD&nbsp;End\n[a=1]\n",
                  TextReport(generator, request));
            generator.SetTranslator(null);
            Equal(Listing("a=1"), TextReport(generator, request));
            generator.SetTranslator(text => "it's & 'so'");
            Request attribute = new Request(AttributeType, "txt");
            attribute.Values.Add(new Value("a", 1));
            Equal("<p lang=\"it's &amp; 'so'\"></p>", TextReport(generator, attribute).Trim());
            string listing = Path.Combine("data", ".rgen", "templates", "txt", "listing.xsl");
            string changed = File.ReadAllText(listing).Replace("\"End\")", "\"]]>\")&amp;");
            File.WriteAllText(listing, changed);
            generator.SetTranslator(text => text + "x");
            Equal("Valuesx\n]]>x&\n[a=1]\n", TextReport(generator, request));
        }
    }

    private static void CheckThrowingTranslator()
    {
        Request request = TextRequest(new Value("a", 1));
        int calls = 0;
        using (ReportGenerator inner = new ReportGenerator("data"))
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.SetTranslator(text =>
            {
                ++calls;
                throw new InvalidOperationException("on purpose");
            });
            Equal("on purpose", Thrown<InvalidOperationException>(
                () => generator.GenerateBytes(request)).Message);
            Equal(1, calls);
            Thrown<InvalidOperationException>(() => generator.GenerateOpenFile(request, "x.txt"));
            StartThrowing(generator, request);
            // An exception in the translator of one generator does not reach that of another.
            inner.SetTranslator(text => "a\0b");
            generator.SetTranslator(text =>
            {
                Thrown<ReportArgumentException>(() => inner.GenerateBytes(request));
                return text;
            });
            Equal(Listing("a=1"), TextReport(generator, request));
        }
    }

    // ---- Stored data --------------------------------------------------------------------------

    private static void CheckPersistentData()
    {
        Dictionary<string, string> texts = new Dictionary<string, string>
        {
            ["a"] = "x & y", ["b"] = "&amp; &lt;", ["c"] = " edges\n", ["d"] = "&amp;amp; <b>",
            ["e"] = "Größe", ["f & g"] = "&copy;",
        };
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            StatusThrown(RgenStatus.RGEN_E_OPEN_PERSIST, () => generator.GetPersistentData(Type));
            generator.SetPersistentData(Type, texts);
            Dictionary<string, string> stored = generator.GetPersistentData(Type);
            Equal(texts.Count, stored.Count);
            foreach (string name in texts.Keys) Equal(texts[name], stored[name]);
            string[] lines = texts.OrderBy(text => text.Key, StringComparer.Ordinal)
                                  .Select(text => text.Key + "=" + text.Value).ToArray();
            Equal(Listing(lines), TextReport(generator, TextRequest()));
            generator.SetPersistentValues(
                Type, new[] { new Value("n", 16, Hint.Address), new Value("t", "x & y") });
            stored = generator.GetPersistentData(Type);
            Equal("0x10,x & y", stored["n"] + "," + stored["t"]);
            generator.SetPersistentData(Type, new Dictionary<string, string>());
            Equal(0, generator.GetPersistentData(Type).Count);
        }
    }

    private static string StoredText(ReportGenerator generator, string name)
    {
        Dictionary<string, string> stored = generator.GetPersistentData(Type);
        Equal("x & y", stored["other"]);
        return stored[name];
    }

    /// <summary>Markup that is refused, and markup that is taken, which does no harm to the other
    /// text.</summary>
    private static void CheckPersistentMarkup(ReportGenerator generator)
    {
        Value other = new Value("other", "x & y");
        foreach (string content in new[] { "&foo;", "&f oo;", "&nbsp;", "&AMP;", "&1;", "&;",
                                           "&&amp;", "& amp;", "a & b; c", "&lt;&foo;", "&a&lt;",
                                           "&<b>;" })
        {
            Thrown<ReportArgumentException>(() => generator.SetPersistentValues(
                Type, new[] { other, Value.Markup("b", content) }));
        }
        foreach (string[] row in new[] { new[] { "&#xD800;", "\uFFFD" },
                                         new[] { "&#99999999999;", "\uFFFD" },
                                         new[] { "&#00065;", "A" }, new[] { "\u0001", "\uFFFD" },
                                         new[] { "&#xZ; AT&T", "Z; ATT" } })
        {
            generator.SetPersistentValues(Type, new[] { Value.Markup("b", row[0]), other });
            Equal(row[1], StoredText(generator, "b"));
        }
    }

    /// <summary>Texts that the library would cut, or that would make it lose others.</summary>
    private static void CheckPersistentLimits()
    {
        const int Longest = 10000000;
        Dictionary<string, string> texts = new Dictionary<string, string>
        {
            ["a\uFFFE"] = "\uFFFFa\u0001", ["other"] = "x & y",
        };
        Value other = new Value("other", "x & y");
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.SetPersistentData(Type, texts);
            Equal("\uFFFDa\uFFFD", StoredText(generator, "a\uFFFD"));
            generator.SetPersistentValues(
                Type, new[] { other, Value.Markup("b\uFFFF", "\uFFFE&amp;amp;&#xFFFE;") });
            Equal("\uFFFD&\uFFFD", StoredText(generator, "b\uFFFD"));
            CheckPersistentMarkup(generator);
            texts["long"] = "&" + new string('x', Longest - 5);
            generator.SetPersistentData(Type, texts);
            Equal(texts["long"], StoredText(generator, "long"));
            texts["long"] += "x";
            Thrown<ReportArgumentException>(() => generator.SetPersistentData(Type, texts));
            foreach (Value value in new[] { new Value("long", texts["long"]),
                                            Value.Markup("long", new string('x', Longest + 1)),
                                            new Value("long", new byte[Longest / 3 + 1]),
                                            new Value(new string('n', 1000001), 1) })
            {
                Equal(value.Name, Thrown<ReportArgumentException>(
                    () => generator.SetPersistentValues(Type, new[] { value })).Key);
            }
            Equal(Longest - 4, StoredText(generator, "long").Length);
            string name = new string('"', 1000000);
            generator.SetPersistentValues(
                Type, new[] { other, new Value(name, new byte[Longest / 3]) });
            Equal(Longest - 2, StoredText(generator, name).Length);
        }
    }

    private static void CheckDumpAndSimulation()
    {
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.Dump(new[] { new Value("a", "x & y") }, "dump.xml");
            Equal(true, File.ReadAllText("dump.xml").Contains("<property name=\"a\">x &amp; y<"));
            generator.Dump(new Value[0], "empty.xml");
            Equal(true, File.Exists("empty.xml"));
            List<Value> values = generator.SimulatedInput("simulated.xml");
            Equal(3, values.Count);
            Value number = values.Single(value => value.Name == "Number");
            Equal(12L, (long)number.Content);
            Equal(Hint.Size, number.Hint);
            Equal("a & b", (string)values.Single(value => value.Name == "Text").Content);
            byte[] bytes = (byte[])values.Single(value => value.Name == "Bytes").Content;
            Equal("1,171", string.Join(",", bytes));
            Equal(0, generator.SimulatedInput("nothing.xml").Count);
        }
    }

    /// <summary>Each report has a MiB of the library's; 40 of them would show.</summary>
    private static void CheckMemory()
    {
        Request request = TextRequest(new Value("a", new string('x', 1 << 18)),
                                      new Value("b", new byte[1 << 16]));
        request.Pairs.Add(new Pair("c", new string('y', 1 << 18)));
        Dictionary<string, string> texts = new Dictionary<string, string>
        {
            ["d"] = new string('z', 1 << 18),
        };
        long before = 0;
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            for (int i = 0; i < 50; ++i)
            {
                if (i == 10) before = ResidentPages();
                generator.SetTranslator(text => new string('t', 1 << 18));
                generator.SetPersistentData(Type, texts);
                generator.GetPersistentData(Type);
                generator.GenerateBytes(request);
                generator.GenerateBytesAsync(request).Wait();
            }
        }
        long growth = ResidentPages() - before;
        if (growth > 6 * 256) throw new Exception("grown by so many pages: " + growth);
    }

    private static long ResidentPages()
    {
        GC.Collect();
        GC.WaitForPendingFinalizers();
        return long.Parse(File.ReadAllText("/proc/self/statm").Split(' ')[1]);
    }

    private static void CheckThreads()
    {
        List<Exception> failures = new List<Exception>();
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.SetTranslator(text => text);
            Thread[] threads = Enumerable.Range(0, 4).Select(
                number => new Thread(() => MakeReports(generator, number, failures))).ToArray();
            foreach (Thread thread in threads) thread.Start();
            foreach (Thread thread in threads) thread.Join();
        }
        Equal("", string.Join("\n", failures));
    }

    private static void MakeReports(ReportGenerator generator, int number, List<Exception> failures)
    {
        try
        {
            for (int i = 0; i < 50; ++i)
            {
                Value value = new Value("a", number * 1000 + i);
                Equal(Listing("a=" + value.Content), TextReport(generator, TextRequest(value)));
            }
        }
        catch (Exception exception)
        {
            lock (failures) failures.Add(exception);
        }
    }
}
