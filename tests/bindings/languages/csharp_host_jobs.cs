// The cases of the host in C# about asynchronous reports.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Text;
using System.Threading;
using System.Threading.Tasks;
using StrataRepgenlib;

internal static partial class CSharpHost
{
    private static void CheckJobs()
    {
        MakeJobs().GetAwaiter().GetResult();
    }

    private static async Task MakeJobs()
    {
        ReportGenerator generator = new ReportGenerator("data");
        Request request = TextRequest(new Value("a", 1));
        Equal("job.txt", await generator.GenerateFileAsync(request, "job.txt"));
        Equal(Listing("a=1"), File.ReadAllText("job.txt"));
        await MakeManyJobs(generator);
        CancellationTokenSource source = new CancellationTokenSource();
        Equal(Listing("a=1"),
              Encoding.UTF8.GetString(generator.GenerateBytes(request, source.Token)));
        using (OpenFile file = generator.GenerateOpenFile(request, "open.txt", source.Token))
        using (OpenFile other = await generator.GenerateOpenFileAsync(request, "other.txt"))
        {
            foreach (OpenFile open in new[] { file, other })
            {
                string descriptor = "/proc/self/fd/" + open.DangerousGetHandle();
                Equal(Listing("a=1"), File.ReadAllText(descriptor));
            }
        }
        StatusThrown(RgenStatus.RGEN_E_EMPTY_INPUT,
                     () => generator.GenerateBytesAsync(TextRequest()).GetAwaiter().GetResult());
        source.Cancel();
        Equal(true, generator.GenerateFileAsync(request, "x.txt", source.Token).IsCanceled);
        Thrown<OperationCanceledException>(() => generator.GenerateBytes(request, source.Token));
        // The reports that run keep what they use.
        Task<byte[]> last = generator.GenerateBytesAsync(request);
        generator.Dispose();
        Equal(Listing("a=1"), Encoding.UTF8.GetString(await last));
    }

    private static async Task MakeManyJobs(ReportGenerator generator)
    {
        Task<byte[]>[] tasks = Enumerable.Range(0, 20).Select(
            number => generator.GenerateBytesAsync(TextRequest(new Value("a", number)))).ToArray();
        byte[][] reports = await Task.WhenAll(tasks);
        for (int i = 0; i < reports.Length; ++i)
        {
            Equal(Listing("a=" + i), Encoding.UTF8.GetString(reports[i]));
        }
    }

    private static void CheckJobTranslators()
    {
        Request request = TextRequest(new Value("a", 1));
        using (ReportGenerator generator = new ReportGenerator("data"))
        using (ManualResetEventSlim hasBegun = new ManualResetEventSlim())
        using (ManualResetEventSlim maySpeak = new ManualResetEventSlim())
        {
            generator.SetTranslator(text =>
            {
                hasBegun.Set();
                maySpeak.Wait();
                return text + " 1";
            });
            Task<byte[]> first = generator.GenerateBytesAsync(request);
            hasBegun.Wait();
            generator.SetTranslator(text => text + " 2");
            GC.Collect();
            GC.WaitForPendingFinalizers();
            maySpeak.Set();
            Equal("Values 1\nEnd 1\n[a=1]\n", Encoding.UTF8.GetString(first.Result));
            Equal("Values 2\nEnd 2\n[a=1]\n",
                  Encoding.UTF8.GetString(generator.GenerateBytesAsync(request).Result));
        }
    }

    /// <summary>The exception leaves the asynchronous call, and no other one.</summary>
    private static void StartThrowing(ReportGenerator generator, Request request)
    {
        Equal("on purpose", Thrown<InvalidOperationException>(
            () => generator.GenerateFileAsync(request, "x.txt").GetAwaiter().GetResult()).Message);
    }

    private static void CheckCancelledJob()
    {
        Request request = new Request(Type, "pdf");
        request.Values.Add(new Value("a", 1));
        string template = Path.Combine("data", ".rgen", "templates", "pdf", "listing.xsl");
        string marked = "<p>QT_TRANSLATE_NOOP(\"QObject\", \"Title\")</p><p>";
        File.WriteAllText(template, File.ReadAllText(template).Replace("<p>", marked));
        using (ReportGenerator generator = new ReportGenerator("data"))
        using (CancellationTokenSource source = new CancellationTokenSource())
        {
            bool isTranslated = false;
            generator.SetTranslator(text =>
            {
                isTranslated = true;
                return text;
            });
            Task<string> task = generator.GenerateFileAsync(request, "never.pdf", source.Token);
            while (!File.Exists("started.log")) Thread.Yield();
            // The runtime knows the thread of the job by now, and has to stop it.
            Equal(true, isTranslated);
            GC.Collect();
            // Another report of the generator, which is not cancelled with it.
            Task<byte[]> other = generator.GenerateBytesAsync(TextRequest(new Value("a", 1)));
            source.Cancel();
            Thrown<OperationCanceledException>(() => task.GetAwaiter().GetResult());
            Equal(true, task.IsCanceled);
            Equal(Listing("a=1"), Encoding.UTF8.GetString(other.Result));
        }
    }

    private static void CheckNested()
    {
        Request request = TextRequest();
        request.AddNested(new Dictionary<string, object>
        {
            ["Device"] = new Dictionary<string, object> { ["Model"] = "T & 1", ["On"] = true },
            ["Err"] = new[] { new Dictionary<string, long> { ["Address"] = 16 },
                              new Dictionary<string, long> { ["Address"] = 32 } },
            ["Row"] = new object[] { new[] { 7, 8 }, new List<int> { 9 } },
            ["Note"] = new[] { "a", null, "c" },
            ["Ten"] = new Dictionary<int, object> { [10] = new Hinted(16, Hint.Address) },
            ["Empty"] = new int[0], ["None"] = null, ["NaN"] = double.NaN,
            ["Small"] = 1.5e-7, ["Large"] = -1.5e20, ["Tenth"] = 0.1f, ["Exact"] = 12.50m,
            ["Time"] = new DateTime(2026, 3, 9, 12, 14, 7, DateTimeKind.Utc),
            ["Long"] = TimeSpan.FromMilliseconds(1500), ["Longer"] = TimeSpan.FromMinutes(2),
            ["Bytes"] = new byte[] { 1, 0xAB }, ["a.b"] = (byte)3,
        });
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            Equal(Listing("Bytes=01 AB ", "Device.Model=T & 1", "Device.On=true",
                          "Err.1.Address=16", "Err.2.Address=32", "Exact=12.50",
                          "Large=-150000000000000000000", "Long=1.5", "Longer=120", "Note.1=a",
                          "Note.3=c", "Row.1.1=7", "Row.1.2=8", "Row.2.1=9", "Small=0.00000015",
                          "Ten.10=0x10", "Tenth=0.1", "Time= 9.03.2026 08:14:07", "a.b=3"),
                  TextReport(generator, request));
        }
        CheckWrongNesting(request);
    }

    private static void CheckWrongNesting(Request request)
    {
        object deep = 1;
        for (int i = 0; i < 32; ++i) deep = new[] { deep };
        Action<object, string> refuse = (value, key) => Equal(
            key, Thrown<ReportArgumentException>(
                () => request.AddNested(new Dictionary<string, object> { ["a"] = value })).Key);
        refuse(new Dictionary<string, object> { [""] = 1 }, "a");
        refuse(new object[] { 1, new Uri("http://localhost") }, "a.2");
        refuse(new[] { ulong.MaxValue }, "a.1");
        refuse(double.PositiveInfinity, "a");
        refuse(deep, "a" + string.Concat(Enumerable.Repeat(".1", 31)));
        refuse(new Dictionary<object, object> { [1.5] = 1 }, "a");
        Thrown<ReportArgumentException>(() => request.AddNested(new[] { 1 }));
        Thrown<ArgumentNullException>(() => request.AddNested(null));
    }
}
