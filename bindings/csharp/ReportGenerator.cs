// A report generator for hosts in C#. The contract of rgen.h applies. The README in this folder
// lists what is checked before calls, since the library's own exceptions end a host in C#.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using Microsoft.Win32.SafeHandles;

namespace StrataRepgenlib
{
    /// <summary>Makes reports. All functions may be called by several threads at once. Dispose does
    /// not wait; the library's generator is freed after the last running call.</summary>
    public sealed class ReportGenerator : IDisposable
    {
        private readonly GeneratorHandle handle;
        private readonly object settings = new object();
        private volatile string folder;
        private Translation translation;

        /// <summary>A generator that keeps its data directory ".rgen" in an existing
        /// folder.</summary>
        public ReportGenerator(string folder)
        {
            RgenNative.CheckLayout();
            handle = new GeneratorHandle();
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

        /// <summary>Sets another folder for the data directory. Throws a StatusException with
        /// RGEN_E_DIR_NOT_FOUND if it does not exist; the previous one stays.</summary>
        public void SetDataDir(string newFolder)
        {
            if (newFolder == null) throw new ArgumentNullException(nameof(newFolder));
            string path = Path.GetFullPath(newFolder);
            FileChecks.RequireReachable(path);
            byte[] bytes = ReportTexts.ToUtf8(path, "the folder");
            Check(path, Call(generator => RgenNative.rgen_setDataDirPath(generator, bytes)));
            folder = path;
        }

        /// <summary>Sets the function that translates the marked texts of templates; null for none.
        /// It must not call this generator. Its exceptions are thrown again by the generating
        /// function, after the report. Plain translations are escaped; with isMarkup they become
        /// part of the template without escapes, and a reference that XML does not define is an
        /// ArgumentException. Characters that XML does not allow become U+FFFD. If it returns null
        /// or the text itself, the text stays as it is. Waits while a transformation
        /// runs.</summary>
        public void SetTranslator(Func<string, string> translate, bool isMarkup = false)
        {
            Translation next = new Translation(translate ?? (text => text), isMarkup);
            lock (settings)
            {
                Translation previous = translation;
                translation = next;
                Call(generator =>
                {
                    RgenNative.rgen_setTranslateFunction(generator, next.Function, IntPtr.Zero);
                    return 0;
                });
                // Until now the library could call the previous one.
                GC.KeepAlive(previous);
            }
        }

        /// <summary>Generates a report as a file; an existing one is replaced. A "pdf" that was
        /// converted is checked afterwards. Throws a StatusException, a ConversionException, the
        /// exception of the translator, or exceptions of System.IO about the path.</summary>
        public void GenerateFile(Request request, string output)
        {
            RequireInput(request);
            bool converts = request.Format == "pdf" && request.Convert;
            FileChecks.RequireOutput(output, converts, request.ConverterBase);
            if (converts) PdfCheck.RemoveNote(output);
            RgenCVariant result = Generate(request, OutputMode.File, output);
            RgenNative.rgen_freeRgenCVariant(ref result);
            if (converts) PdfCheck.Require(output);
        }

        /// <summary>Generates a report in memory, without any conversion.</summary>
        public byte[] GenerateBytes(Request request)
        {
            RequireInput(request);
            RgenCVariant result = Generate(request, OutputMode.Bytes, "");
            try
            {
                // For a report without bytes the record stays empty.
                if (result.type == 0) return new byte[0];
                NativeRecords.Require(result.value.byteArrayValue.data != IntPtr.Zero);
                return NativeRecords.BytesOf(result.value.byteArrayValue);
            }
            finally
            {
                RgenNative.rgen_freeRgenCVariant(ref result);
            }
        }

        /// <summary>Generates a report as a file that the system deletes when it is closed, without
        /// conversion. Windows reads the path in the ANSI code page: use ASCII.</summary>
        public OpenFile GenerateOpenFile(Request request, string output)
        {
            RequireInput(request);
            FileChecks.RequireOutput(output, false, "");
            RgenCVariant result = Generate(request, OutputMode.DeleteOnClose, output);
            NativeRecords.Require(result.type == (ulong)RgenVariantType.RGEN_TYPE_HANDLE);
            IntPtr file = result.value.handleValue;
            RgenNative.rgen_freeRgenCVariant(ref result);
            return new OpenFile(file);
        }

        /// <summary>Requests the running generations of a report type to stop; without an argument,
        /// those of all types. They end with a StatusException whose IsCancellation is
        /// true.</summary>
        public void Cancel(Guid? type = null)
        {
            Call(generator =>
            {
                RgenGuid guid = NativeRecords.ToRecord(type ?? Guid.Empty);
                if (type == null) RgenNative.rgen_cancel(generator, IntPtr.Zero);
                else RgenNative.rgen_cancel(generator, ref guid);
                return 0;
            });
        }

        /// <summary>The persistent data of a report type, as passed to SetPersistentData; control
        /// characters, U+FFFE and U+FFFF are returned as U+FFFD. Throws a StatusException with
        /// RGEN_E_OPEN_PERSIST if nothing was stored yet.</summary>
        public Dictionary<string, string> GetPersistentData(Guid type)
        {
            RequireFolder();
            RgenGuid guid = NativeRecords.ToRecord(type);
            RgenCAnsiStringPairSet pairs = new RgenCAnsiStringPairSet();
            try
            {
                int status = Call(
                    generator => RgenNative.rgen_getPersistentData(generator, ref guid, ref pairs));
                if (status == RgenNative.RGEN_E_NO_PERSIST_VALUES ||
                    status == RgenNative.RGEN_E_NO_VALID_PERSIST_VALUES)
                {
                    return new Dictionary<string, string>();
                }
                Check(type.ToString(), status);
                NativeRecords.Require(pairs.count != 0);
                return NativeRecords.TextsOf(pairs);
            }
            finally
            {
                RgenNative.rgen_freeRgenCAnsiStringSet(ref pairs);
            }
        }

        /// <summary>Replaces the persistent data of a report type. Entries without a name or text
        /// are not stored; an ArgumentException for more than 10,000,000 bytes of text or 1,000,000
        /// of name.</summary>
        public void SetPersistentData(Guid type, IEnumerable<KeyValuePair<string, string>> texts)
        {
            if (texts == null) throw new ArgumentNullException(nameof(texts));
            List<Pair> list = new List<Pair>();
            foreach (KeyValuePair<string, string> text in texts)
            {
                string name = ReportTexts.StoredName(new Pair(text.Key, text.Value).Name);
                list.Add(Pair.Markup(name, ReportTexts.Stored(name, text.Value, false)));
            }
            SetPersistentPairs(type, list);
        }

        /// <summary>Replaces the persistent data of a report type by the texts that reports show
        /// for values; types and hints are not stored. An ArgumentException for markup with a
        /// reference that XML does not define, which would damage other entries. In other respects
        /// like SetPersistentData.</summary>
        public void SetPersistentValues(Guid type, IReadOnlyList<Value> values)
        {
            if (values == null) throw new ArgumentNullException(nameof(values));
            List<Value> stored = NativeRecords.Stored(values);
            RequireFolder();
            RgenGuid guid = NativeRecords.ToRecord(type);
            RgenCVariantSet set = new RgenCVariantSet();
            try
            {
                NativeRecords.Create(stored, ReportTexts.Escaped, ref set);
                Check(type.ToString(), Call(generator =>
                    RgenNative.rgen_setPersistentDataFromCVariantSet(generator, ref guid,
                                                                     ref set)));
            }
            finally
            {
                RgenNative.rgen_freeRgenCVariantSet(ref set);
            }
        }

        /// <summary>Writes values as an XML file of names and texts.</summary>
        public void Dump(IReadOnlyList<Value> values, string output)
        {
            if (values == null) throw new ArgumentNullException(nameof(values));
            FileChecks.RequireOutput(output, false, "");
            byte[] path = ReportTexts.ToUtf8(output, "the path");
            using (NativeRequest input = new NativeRequest(values))
            {
                Check(output, Call(generator =>
                    RgenNative.rgen_dumpRawInputDataToFile(generator, ref input.Record, path)));
            }
        }

        /// <summary>Reads typed values from an XML file, which may contain none.</summary>
        public List<Value> SimulatedInput(string input)
        {
            if (input == null) throw new ArgumentNullException(nameof(input));
            FileChecks.RequireReachable(input);
            byte[] path = ReportTexts.ToUtf8(input, "the path");
            RgenCVariantSet set = new RgenCVariantSet();
            try
            {
                Call(generator =>
                    RgenNative.rgen_getSimulatedRawDataFromFile(generator, path, ref set));
                return NativeRecords.ValuesOf(set);
            }
            finally
            {
                RgenNative.rgen_freeRgenCVariantSet(ref set);
            }
        }

        /// <summary>The library's text for a status.</summary>
        public static string StatusText(int status)
        {
            // The library only checks whether the handle is null.
            IntPtr anyHandle = new IntPtr(1);
            return ReportTexts.FromUtf8(
                RgenNative.rgen_getStatusCodeDescription(anyHandle, status));
        }

        /// <summary>Frees the generator.</summary>
        public void Dispose()
        {
            handle.Dispose();
        }

        private void SetPersistentPairs(Guid type, List<Pair> pairs)
        {
            RequireFolder();
            RgenGuid guid = NativeRecords.ToRecord(type);
            RgenCAnsiStringPairSet set = new RgenCAnsiStringPairSet();
            try
            {
                NativeRecords.Create(pairs, ReportTexts.Escaped, ref set);
                Check(type.ToString(), Call(generator =>
                    RgenNative.rgen_setPersistentDataFromAnsiStringPairSet(generator, ref guid,
                                                                           ref set)));
            }
            finally
            {
                RgenNative.rgen_freeRgenCAnsiStringSet(ref set);
            }
        }

        /// <summary>The result of a report; the caller frees it.</summary>
        private RgenCVariant Generate(Request request, OutputMode mode, string output)
        {
            RequireFolder();
            FileChecks.RequireTemplates(folder, request.Format);
            RgenCVariant result = new RgenCVariant();
            ExceptionDispatchInfo raised;
            int status;
            using (NativeRequest input = new NativeRequest(request, mode, output))
            {
                status = Translation.Watch(
                    () => Call(generator => RgenNative.rgen_generateReport(
                                   generator, ref input.Record, ref result)),
                    out raised);
            }
            if (raised != null) DropResult(ref result);
            raised?.Throw();
            Check(output.Length == 0 ? request.Type.ToString() : output, status);
            return result;
        }

        /// <summary>Closes the handle of a report that is not returned to the host.</summary>
        private static void DropResult(ref RgenCVariant result)
        {
            if (result.type == (ulong)RgenVariantType.RGEN_TYPE_HANDLE)
            {
                new OpenFile(result.value.handleValue).Dispose();
            }
            RgenNative.rgen_freeRgenCVariant(ref result);
        }

        private static void RequireInput(Request request)
        {
            if (request == null) throw new ArgumentNullException(nameof(request));
        }

        private void RequireFolder()
        {
            FileChecks.RequireDataDir(folder);
        }

        private static void Check(string subject, int status)
        {
            if (status < 0) throw new StatusException(subject, status, StatusText(status));
        }

        /// <summary>Makes a call during which Dispose on another thread does not free the
        /// generator.</summary>
        private int Call(Func<IntPtr, int> call)
        {
            bool isHeld = false;
            try
            {
                handle.DangerousAddRef(ref isHeld);
                return call(handle.DangerousGetHandle());
            }
            finally
            {
                if (isHeld) handle.DangerousRelease();
                GC.KeepAlive(this);
            }
        }

        /// <summary>The library's generator.</summary>
        private sealed class GeneratorHandle : SafeHandleZeroOrMinusOneIsInvalid
        {
            internal GeneratorHandle() : base(true)
            {
                SetHandle(RgenNative.rgen_newReportGenerator());
                NativeRecords.Require(!IsInvalid);
            }

            protected override bool ReleaseHandle()
            {
                RgenNative.rgen_freeReportGenerator(handle);
                return true;
            }
        }
    }
}
