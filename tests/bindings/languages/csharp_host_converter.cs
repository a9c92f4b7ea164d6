// The cases of the host in C# about reports that a converter finishes.
//
// SPDX-License-Identifier: MIT
using System;
using System.IO;
using System.Threading;
using StrataRepgenlib;

internal static partial class CSharpHost
{
    private static void MakePdf(string output, bool convert = true)
    {
        Request request = new Request(Type, "pdf") { Convert = convert };
        request.Values.Add(new Value("a", 1));
        using (ReportGenerator generator = new ReportGenerator("data"))
        {
            generator.GenerateFile(request, output);
        }
    }

    private static void CheckWholePdf()
    {
        MakePdf("whole.pdf");
        MakePdf("page.pdf", false);
        Equal(true, File.ReadAllText("page.pdf").Contains("<p>1</p>"));
    }

    private static void CheckMissingPdf()
    {
        ConversionException exception = Thrown<ConversionException>(() => MakePdf("missing.pdf"));
        Equal("missing.pdf", exception.Path);
        Equal(RgenStatus.RGEN_E_EXTERNAL_FAILED, exception.Status);
        Equal("missing.pdf: the converter made no file: no engine is there", exception.Message);
    }

    private static void CheckBrokenPdf()
    {
        ConversionException exception = Thrown<ConversionException>(() => MakePdf("broken.pdf"));
        Equal("broken.pdf: the converter's file is not a whole pdf", exception.Message);
    }

    private static void CheckNotedPdf()
    {
        ConversionException exception = Thrown<ConversionException>(() => MakePdf("noted.pdf"));
        Equal("noted.pdf: the converter failed: a page about a failure", exception.Message);
    }

    /// <summary>What an earlier conversion left does not speak against this one.</summary>
    private static void CheckNotedBefore()
    {
        File.WriteAllText("whole.pdf.error.txt", "an earlier failure");
        MakePdf("whole.pdf");
        Equal(false, File.Exists("whole.pdf.error.txt"));
    }

    private static void CheckNoConverter()
    {
        StatusThrown(RgenStatus.RGEN_E_RUN_EXTERNAL, () => MakePdf("none.pdf"));
    }

    private static void CheckCancellation()
    {
        Request request = new Request(Type, "pdf");
        request.Values.Add(new Value("a", 1));
        ReportGenerator generator = new ReportGenerator("data");
        StatusException ended = null;
        Thread thread = new Thread(() => ended = Thrown<StatusException>(
                                       () => generator.GenerateFile(request, "never.pdf")));
        thread.Start();
        while (!File.Exists("started.log")) Thread.Yield();
        generator.Cancel(UnknownType);
        generator.Cancel(Type);
        generator.Dispose();
        thread.Join();
        Equal(true, ended.IsCancellation);
    }
}
