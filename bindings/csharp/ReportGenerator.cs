// A report generator for hosts in C#, on top of strata_repgenlib_host.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Runtime.ExceptionServices;
using System.Threading;
using System.Threading.Tasks;

namespace StrataRepgenlib
{
    /// <summary>Makes reports. All functions may be called by several threads at once. Failures are
    /// ReportExceptions. Dispose does not wait; the library's generator is freed after the last
    /// running call or asynchronous report.</summary>
    public sealed class ReportGenerator : IDisposable
    {
        private readonly GeneratorHandle handle;
        private readonly Translations translations = new Translations();

        /// <summary>A generator that keeps its data directory ".rgen" in an existing
        /// folder.</summary>
        public ReportGenerator(string folder)
        {
            using (ErrorRecord error = new ErrorRecord())
            {
                handle = RgenNative.rgenh_newReportGenerator(error);
                if (handle.IsInvalid) throw error.ToException();
            }
            try
            {
                SetDataDir(folder);
            }
            catch
            {
                handle.Dispose();
                throw;
            }
        }

        /// <summary>Sets another folder for the data directory. A relative one is read against the
        /// current folder of each call. Throws a StatusException with RGEN_E_DIR_NOT_FOUND if it
        /// does not exist; the previous one stays.</summary>
        public void SetDataDir(string folder)
        {
            Require(folder, nameof(folder));
            byte[] path = NativeTexts.ToUtf8(folder, "the folder");
            Call(error => RgenNative.rgenh_setDataDirPath(handle, path, error));
        }

        /// <summary>Sets the function that translates the marked texts of templates; null for none.
        /// Translations are plain texts; with isMarkup they are XML content. If it returns null or
        /// the text itself, the text stays as it is. Its exceptions are thrown again by the
        /// generating function, after the report. Waits while a transformation runs. Reports that
        /// were started asynchronously before use the previous translator.</summary>
        public void SetTranslator(Func<string, string> translate, bool isMarkup = false)
        {
            ulong form = isMarkup ? RgenNative.RGENH_MARKUP : RgenNative.RGENH_PLAIN;
            translations.Set(handle, translate, form);
        }

        /// <summary>Generates a report as a file; an existing one is replaced. A "pdf" that was
        /// converted is checked afterwards: if it is not complete, a ConversionException is thrown.
        /// An exception of the translator is thrown again; the file may exist then.</summary>
        public void GenerateFile(Request request, string output,
                                 CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            Require(output, nameof(output));
            RgenCVariant result = Generate(request, RgenNative.RGEN_OUTPUT_FILE, output, token);
            RgenNative.rgen_freeRgenCVariant(ref result);
        }

        /// <summary>Like GenerateFile, on a thread of the library, for which no other thread waits.
        /// Relative paths are read against the current folder at the time it runs. The token
        /// cancels this report only. The result is the path.</summary>
        public Task<string> GenerateFileAsync(Request request, string output,
                                              CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            Require(output, nameof(output));
            return GenerateAsync(request, RgenNative.RGEN_OUTPUT_FILE, output, token, result =>
            {
                RgenNative.rgen_freeRgenCVariant(ref result);
                return output;
            });
        }

        /// <summary>Generates a report in memory, without any conversion.</summary>
        public byte[] GenerateBytes(Request request,
                                    CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            return BytesOf(Generate(request, RgenNative.RGEN_OUTPUT_BYTES, "", token));
        }

        /// <summary>Like GenerateBytes, on a thread of the library.</summary>
        public Task<byte[]> GenerateBytesAsync(Request request,
                                               CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            return GenerateAsync(request, RgenNative.RGEN_OUTPUT_BYTES, "", token, BytesOf);
        }

        /// <summary>Generates a report as a file that the system deletes when it is closed, without
        /// conversion. Windows reads the path in the ANSI code page: use ASCII.</summary>
        public OpenFile GenerateOpenFile(Request request, string output,
                                         CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            Require(output, nameof(output));
            return FileOf(Generate(request, RgenNative.RGEN_OUTPUT_DELETE_ON_CLOSE, output, token));
        }

        /// <summary>Like GenerateOpenFile, on a thread of the library.</summary>
        public Task<OpenFile> GenerateOpenFileAsync(
            Request request, string output, CancellationToken token = default(CancellationToken))
        {
            Require(request, nameof(request));
            Require(output, nameof(output));
            return GenerateAsync(request, RgenNative.RGEN_OUTPUT_DELETE_ON_CLOSE, output, token,
                                 FileOf);
        }

        /// <summary>Asks the running reports of a type to stop; without an argument, those of all
        /// types. They end with a StatusException whose IsCancellation is true. Reports with a
        /// CancellationToken are stopped by it alone.</summary>
        public void Cancel(Guid? type = null)
        {
            Guid[] guid = type == null ? null : new[] { type.Value };
            Call(error => RgenNative.rgenh_cancel(handle, guid, error));
        }

        /// <summary>The persistent data of a report type, as passed to SetPersistentData.
        /// Characters that XML cannot contain are returned as U+FFFD. Throws a StatusException
        /// with RGEN_E_OPEN_PERSIST if nothing was stored yet.</summary>
        public Dictionary<string, string> GetPersistentData(Guid type)
        {
            RgenCAnsiStringPairSet pairs = new RgenCAnsiStringPairSet();
            try
            {
                Call(error =>
                    RgenNative.rgenh_getPersistentTexts(handle, ref type, ref pairs, error));
                return NativeResults.TextsOf(pairs);
            }
            finally
            {
                RgenNative.rgen_freeRgenCAnsiStringSet(ref pairs);
            }
        }

        /// <summary>Replaces the persistent data of a report type. Entries without a name or text
        /// are not stored; texts that are too long for the library are
        /// ReportArgumentExceptions.</summary>
        public void SetPersistentData(Guid type, IEnumerable<KeyValuePair<string, string>> texts)
        {
            Require(texts, nameof(texts));
            List<Value> values = new List<Value>();
            foreach (KeyValuePair<string, string> text in texts)
            {
                values.Add(new Value(text.Key, text.Value));
            }
            SetPersistentValues(type, values);
        }

        /// <summary>Replaces the persistent data of a report type by the texts that reports show
        /// for values; types and hints are not stored. Markup with a reference that XML does not
        /// know is a ReportArgumentException.</summary>
        public void SetPersistentValues(Guid type, IReadOnlyList<Value> values)
        {
            Require(values, nameof(values));
            using (NativeInput input = new NativeInput(values))
            {
                IntPtr records = input.Pin();
                Call(error => RgenNative.rgenh_setPersistentValues(
                         handle, ref type, records, (ulong)values.Count, error), values);
            }
        }

        /// <summary>Writes values as an XML file of names and texts.</summary>
        public void Dump(IReadOnlyList<Value> values, string output)
        {
            Require(values, nameof(values));
            Require(output, nameof(output));
            byte[] path = NativeTexts.ToUtf8(output, "the path");
            Request request = new Request(Guid.Empty, "");
            request.Values.AddRange(values);
            using (RequestHandle input = NativeInput.NewRequest(request, 0, ""))
            {
                IntPtr record = RgenNative.rgenh_getRequestInput(input);
                Call(error =>
                    RgenNative.rgenh_dumpRawInputDataToFile(handle, record, path, error));
            }
        }

        /// <summary>Reads typed values from an XML file, which may be missing or contain
        /// none.</summary>
        public List<Value> SimulatedInput(string input)
        {
            Require(input, nameof(input));
            byte[] path = NativeTexts.ToUtf8(input, "the path");
            RgenCVariantSet set = new RgenCVariantSet();
            try
            {
                Call(error => RgenNative.rgenh_getSimulatedRawDataFromFile(handle, path, ref set,
                                                                           error));
                return NativeResults.ValuesOf(set);
            }
            finally
            {
                RgenNative.rgen_freeRgenCVariantSet(ref set);
            }
        }

        /// <summary>Frees the generator.</summary>
        public void Dispose()
        {
            handle.Dispose();
        }

        /// <summary>The result of a report; the caller frees it.</summary>
        private RgenCVariant Generate(Request request, ulong mode, string output,
                                      CancellationToken token)
        {
            if (!token.CanBeCanceled) return GenerateHere(request, mode, output);
            token.ThrowIfCancellationRequested();
            using (ReportJob job = Start(request, mode, output))
            using (token.Register(job.Cancel))
            {
                return job.Take(job.Ended.GetAwaiter().GetResult(), token);
            }
        }

        private RgenCVariant GenerateHere(Request request, ulong mode, string output)
        {
            using (RequestHandle input = NativeInput.NewRequest(request, mode, output))
            using (ErrorRecord error = new ErrorRecord())
            {
                RgenCVariant result = new RgenCVariant();
                IntPtr record = RgenNative.rgenh_getRequestInput(input);
                int status = RgenNative.rgenh_generateReport(handle, record, ref result, error);
                // The library uses the translator of this object until now.
                GC.KeepAlive(this);
                ExceptionDispatchInfo thrown = Translation.TakeThrown();
                if (thrown != null) NativeResults.Drop(ref result);
                thrown?.Throw();
                error.Check(status);
                return result;
            }
        }

        private async Task<TResult> GenerateAsync<TResult>(Request request, ulong mode,
                                                           string output, CancellationToken token,
                                                           Func<RgenCVariant, TResult> convert)
        {
            token.ThrowIfCancellationRequested();
            using (ReportJob job = Start(request, mode, output))
            using (token.Register(job.Cancel))
            {
                ExceptionDispatchInfo thrown = await job.Ended.ConfigureAwait(false);
                return convert(job.Take(thrown, token));
            }
        }

        private ReportJob Start(Request request, ulong mode, string output)
        {
            using (RequestHandle input = NativeInput.NewRequest(request, mode, output))
            {
                return new ReportJob(handle, translations, input);
            }
        }

        private static byte[] BytesOf(RgenCVariant result)
        {
            try
            {
                // For a report without bytes the record stays empty.
                if (result.type == RgenNative.RGEN_TYPE_EMPTY) return new byte[0];
                return NativeResults.BytesOf(result.value.byteArrayValue);
            }
            finally
            {
                RgenNative.rgen_freeRgenCVariant(ref result);
            }
        }

        private static OpenFile FileOf(RgenCVariant result)
        {
            OpenFile file = new OpenFile(result.value.handleValue);
            RgenNative.rgen_freeRgenCVariant(ref result);
            return file;
        }

        private static void Call(Func<ErrorRecord, int> call, IReadOnlyList<Value> values = null)
        {
            using (ErrorRecord error = new ErrorRecord())
            {
                error.Check(call(error), values);
            }
        }

        private static void Require(object argument, string name)
        {
            if (argument == null) throw new ArgumentNullException(name);
        }
    }
}
