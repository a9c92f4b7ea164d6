// A host in C# for the tests: makes one case, whose name is its argument, and says "fine".
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Linq;
using System.Text;
using StrataRepgenlib;

internal static partial class CSharpHost
{
    private static readonly Guid Type = new Guid("deadbabe-0000-0000-0000-000000000000");
    private static readonly Guid TypeWithoutTemplate =
        new Guid("11111111-2222-3333-4444-555555555555");
    private static readonly Guid AttributeType = new Guid("22222222-3333-4444-5555-666666666666");
    private static readonly Guid UnknownType = new Guid("66666666-7777-8888-9999-aaaaaaaaaaaa");

    private static readonly Dictionary<string, Action> Cases = new Dictionary<string, Action>
    {
        ["layout"] = RgenNative.CheckLayout,
        ["statuses"] = CheckStatuses,
        ["values"] = CheckValues,
        ["escaping"] = CheckEscaping,
        ["outputs"] = CheckOutputs,
        ["openFile"] = CheckOpenFile,
        ["translation"] = CheckTranslation,
        ["raisingTranslator"] = CheckRaisingTranslator,
        ["failures"] = CheckFailures,
        ["refusals"] = CheckRefusals,
        ["persistentData"] = CheckPersistentData,
        ["persistentLimits"] = CheckPersistentLimits,
        ["dumpAndSimulation"] = CheckDumpAndSimulation,
        ["memory"] = CheckMemory,
        ["threads"] = CheckThreads,
        ["wholePdf"] = CheckWholePdf,
        ["missingPdf"] = CheckMissingPdf,
        ["brokenPdf"] = CheckBrokenPdf,
        ["notedPdf"] = CheckNotedPdf,
        ["notedBefore"] = CheckNotedBefore,
        ["noConverter"] = CheckNoConverter,
        ["cancellation"] = CheckCancellation,
    };

    private static int Main(string[] arguments)
    {
        Cases[arguments[0]]();
        Console.WriteLine("fine");
        return 0;
    }

    // ---- What the cases share ---------------------------------------------------------------

    private static void Equal<T>(T wanted, T found)
    {
        if (EqualityComparer<T>.Default.Equals(wanted, found)) return;
        throw new Exception("wanted <" + wanted + ">, found <" + found + ">");
    }

    private static TException Raised<TException>(Action action) where TException : Exception
    {
        try
        {
            action();
        }
        catch (TException exception)
        {
            return exception;
        }
        throw new Exception("no " + typeof(TException).Name + " was raised");
    }

    /// <summary>The base class of all thrown exceptions.</summary>
    private static void StatusRaised(int status, Action action)
    {
        StatusException exception = Raised<StatusException>(action);
        Equal(RgenNative.StatusName(status), exception.Name);
        Equal(status, exception.Status);
        Equal(false, exception.Text.Length == 0);
    }

    private static Request TextRequest(params Value[] values)
    {
        Request request = new Request(Type, "txt");
        request.Values.AddRange(values);
        return request;
    }

    private static string TextReport(ReportGenerator generator, Request request)
    {
        return Encoding.UTF8.GetString(generator.GenerateBytes(request));
    }

    private static string Listing(params string[] lines)
    {
        return "Values\nEnd\n" + string.Concat(lines.Select(line => "[" + line + "]\n"));
    }

    // ---- Statuses, values, texts ------------------------------------------------------------

    private static void CheckStatuses()
    {
        Equal("RGEN_OK", RgenNative.StatusName(0));
        Equal("RGEN_CANCELED", RgenNative.StatusName(unchecked((int)0x80000001)));
        Equal(null, RgenNative.StatusName(1));
        Equal("Template is not found in folder",
              ReportGenerator.StatusText(RgenNative.RGEN_E_TEMPLATE_NOT_FOUND));
        Equal("Undescribed error", ReportGenerator.StatusText(unchecked((int)0xC0990000)));
    }

    private static void CheckValues()
    {
        DateTimeOffset time = new DateTimeOffset(2026, 3, 9, 8, 14, 7, TimeSpan.FromHours(-4));
        Request request = TextRequest(
            new Value("a", -5), new Value("b", 0x186A0, Hint.Address), new Value("c", time),
            new Value("d", time, Hint.Time), new Value("e", new byte[] { 1, 0xAB }),
            new Value("f", new byte[0]), new Value("g", "Größe и слово \U0001F4D6"),
            new Value("h", "earlier"), new Value("h", "later"), new Value("i", long.MinValue),
            new Value("k", ulong.MaxValue, Hint.Address), new Value("l", 7UL),
            new Value("m", DateTimeOffset.FromUnixTimeMilliseconds(-500), Hint.Generic));
        Raised<ArgumentOutOfRangeException>(() => new Value("a", ulong.MaxValue));
        request.Pairs.Add(new Pair("h", "a pair"));
        request.Pairs.Add(new Pair("j & k", "another"));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            Equal(Listing("a=-5", "b=0x186a0", "c= 9.03.2026 08:14:07", "d=08:14:07", "e=01 AB ",
                          "f=", "g=Größe и слово \U0001F4D6", "h=later",
                          "i=-9223372036854775808", "j & k=another", "k=0xffffffffffffffff",
                          "l=7", "m=-1"),
                  TextReport(generator, request));
        }
    }

    private static void CheckEscaping()
    {
        Request request = TextRequest(new Value("a", "x & y &amp; <b> &lt; &#65;"),
                                      Value.Markup("b", "x &amp; &#65;"));
        request.Pairs.Add(new Pair("c", "&&copy;"));
        request.Pairs.Add(Pair.Markup("d", "&lt;"));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            Equal(Listing("a=x & y &amp; <b> &lt; &#65;", "b=x & A", "c=&&copy;", "d=<"),
                  TextReport(generator, request));
        }
    }
}
