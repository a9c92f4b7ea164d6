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
        ["statuses"] = CheckStatuses,
        ["values"] = CheckValues,
        ["wrongValues"] = CheckWrongValues,
        ["nested"] = CheckNested,
        ["escaping"] = CheckEscaping,
        ["outputs"] = CheckOutputs,
        ["openFile"] = CheckOpenFile,
        ["translation"] = CheckTranslation,
        ["throwingTranslator"] = CheckThrowingTranslator,
        ["reentered"] = CheckReentered,
        ["failures"] = CheckFailures,
        ["refusals"] = CheckRefusals,
        ["persistentData"] = CheckPersistentData,
        ["persistentLimits"] = CheckPersistentLimits,
        ["dumpAndSimulation"] = CheckDumpAndSimulation,
        ["memory"] = CheckMemory,
        ["threads"] = CheckThreads,
        ["jobs"] = CheckJobs,
        ["abandonedGenerator"] = CheckAbandonedGenerator,
        ["jobTranslators"] = CheckJobTranslators,
        ["wholePdf"] = CheckWholePdf,
        ["missingPdf"] = CheckMissingPdf,
        ["brokenPdf"] = CheckBrokenPdf,
        ["notedPdf"] = CheckNotedPdf,
        ["notedBefore"] = CheckNotedBefore,
        ["noConverter"] = CheckNoConverter,
        ["cancellation"] = CheckCancellation,
        ["cancelledJob"] = CheckCancelledJob,
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

    private static TException Thrown<TException>(Action action) where TException : Exception
    {
        try
        {
            action();
        }
        catch (TException exception)
        {
            return exception;
        }
        throw new Exception("no " + typeof(TException).Name + " was thrown");
    }

    /// <summary>The base class of all thrown exceptions.</summary>
    private static void StatusThrown(int status, Action action)
    {
        StatusException exception = Thrown<StatusException>(action);
        Equal(ReportErrorKind.Status, exception.Kind);
        Equal(status, exception.Status);
        Equal(ReportStatus.Name(status), exception.Name);
        Equal(ReportStatus.Text(status), exception.Text);
        Equal(ReportStatus.NextStep(status), exception.NextStep);
    }

    private static ReportException KindThrown(ReportErrorKind kind, Action action)
    {
        ReportException exception = Thrown<ReportException>(action);
        Equal(kind, exception.Kind);
        Equal(false, exception.Message.Length == 0);
        return exception;
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
        Equal("RGEN_OK", ReportStatus.Name(0));
        Equal("RGEN_CANCELED", ReportStatus.Name(unchecked((int)0x80000001)));
        Equal("", ReportStatus.Name(1));
        Equal(0, ReportStatus.Causes(1).Count);
        Equal("Template is not found in folder",
              ReportStatus.Text(RgenStatus.RGEN_E_TEMPLATE_NOT_FOUND));
        Equal(false, ReportStatus.NextStep(RgenStatus.RGEN_E_TEMPLATE_NOT_FOUND).Length == 0);
        Equal(true, ReportStatus.Causes(RgenStatus.RGEN_E_TEMPLATE_NOT_FOUND).Count > 0);
        Equal("Undescribed error", ReportStatus.Text(unchecked((int)0xC0990000)));
        LibraryVersions versions = LibraryVersions.Loaded();
        Equal(versions.Library, versions.Host);
        Equal(true, System.IO.File.Exists(versions.LibraryPath));
        Equal(true, System.IO.File.Exists(versions.HostPath));
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
            new Value("m", DateTimeOffset.FromUnixTimeMilliseconds(-500), Hint.Generic),
            new Value("n", time.UtcDateTime));
        Thrown<ArgumentOutOfRangeException>(() => new Value("a", ulong.MaxValue));
        request.Pairs.Add(new Pair("h", "a pair"));
        request.Pairs.Add(new Pair("j & k", "another"));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            Equal(Listing("a=-5", "b=0x186a0", "c= 9.03.2026 08:14:07", "d=08:14:07", "e=01 AB ",
                          "f=", "g=Größe и слово \U0001F4D6", "h=later",
                          "i=-9223372036854775808", "j & k=another", "k=0xffffffffffffffff",
                          "l=7", "m=-1", "n= 9.03.2026 08:14:07"),
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

    private static ReportException Refused(ReportGenerator generator, params Value[] values)
    {
        return Thrown<ReportArgumentException>(
            () => generator.GenerateBytes(TextRequest(values)));
    }

    /// <summary>Each is refused with its name.</summary>
    private static void CheckWrongValues()
    {
        Value good = new Value("good", 1);
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            DateTime year1969 = new DateTime(1969, 1, 1, 0, 0, 0, DateTimeKind.Utc);
            foreach (DateTime time in new[] { DateTime.MinValue, year1969, DateTime.MaxValue })
            {
                Equal("old", Refused(generator, good, new Value("old", time)).Key);
            }
            DateTimeOffset offset = new DateTimeOffset(year1969);
            Equal("old", Refused(generator, good, new Value("old", offset, Hint.Date)).Key);
            Equal("old", Refused(generator, new Value("old", -1, Hint.Time)).Key);
            Thrown<ReportArgumentException>(() => generator.SetPersistentValues(
                Type, new[] { good, new Value("old", offset) }));
            Equal("zero", Refused(generator, good, new Value("zero", "a \0 b")).Key);
            Equal("a\0b", Refused(generator, good, new Value("a\0b", 1)).Key);
            ReportException half = Refused(generator, good, new Value("half", "a \uD800"));
            Equal("half", half.Key);
            Equal(ReportErrorKind.Encoding, half.Kind);
            Equal("\"half\": the text contains half a surrogate pair", half.Message);
            Request request = TextRequest(good);
            request.Pairs.Add(new Pair("first", "1"));
            request.Pairs.Add(new Pair("pair", "\0"));
            Equal("pair", Thrown<ReportArgumentException>(
                () => generator.GenerateBytes(request)).Key);
        }
    }
}
