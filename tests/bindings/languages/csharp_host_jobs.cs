// The cases of the host in C# about asynchronous reports.
//
// SPDX-License-Identifier: MIT
using System;
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

    private static ReportGenerator abandoned;

    private static void CheckAbandonedGenerator()
    {
        abandoned = new ReportGenerator("data");
        MakeManyJobs(abandoned).GetAwaiter().GetResult();
        // One more, which may still run when the process ends.
        ManualResetEventSlim hasBegun = new ManualResetEventSlim();
        abandoned.SetTranslator(text =>
        {
            hasBegun.Set();
            return text;
        });
        abandoned.GenerateBytesAsync(TextRequest(new Value("a", 1)));
        hasBegun.Wait();
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
}
