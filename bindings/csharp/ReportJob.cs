// A report that the library generates on a thread of its own.
//
// SPDX-License-Identifier: MIT
using System;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Threading;
using System.Threading.Tasks;

namespace StrataRepgenlib
{
    internal sealed class ReportJob : IDisposable
    {
        /// <summary>Stored here so that it lives as long as the library may call it.</summary>
        private static readonly RgenhJobEndFunction End = AtEnd;

        private readonly TaskCompletionSource<ExceptionDispatchInfo> ended =
            new TaskCompletionSource<ExceptionDispatchInfo>(
                TaskCreationOptions.RunContinuationsAsynchronously);
        private readonly GeneratorHandle generator;
        private readonly Translations translations;
        private readonly JobHandle job;
        private readonly EventHandler atExit;
        private int isReleased;

        /// <summary>Starts a job. Disposing of it cancels it, and waits for its end.</summary>
        internal ReportJob(GeneratorHandle generator, Translations translations,
                           RequestHandle request)
        {
            this.generator = generator;
            this.translations = translations;
            bool isHeld = false;
            generator.DangerousAddRef(ref isHeld);
            translations.BeginJob();
            GCHandle context = GCHandle.Alloc(ended);
            try
            {
                job = Start(request, GCHandle.ToIntPtr(context));
            }
            catch
            {
                context.Free();
                Release();
                throw;
            }
            // Mono would wait for ever for its thread.
            atExit = (sender, arguments) => Dispose();
            AppDomain.CurrentDomain.ProcessExit += atExit;
        }

        /// <summary>Completed at the end of the job, with the exception of its translator, or
        /// null.</summary>
        internal Task<ExceptionDispatchInfo> Ended
        {
            get { return ended.Task; }
        }

        internal void Cancel()
        {
            using (ErrorRecord error = new ErrorRecord())
            {
                RgenNative.rgenh_cancelJob(job, error);
            }
        }

        /// <summary>The result of a job that has ended; the caller frees it.</summary>
        internal RgenCVariant Take(ExceptionDispatchInfo thrown, CancellationToken token)
        {
            RgenCVariant result = new RgenCVariant();
            using (ErrorRecord error = new ErrorRecord())
            {
                int status = RgenNative.rgenh_takeJobResult(job, ref result, error);
                if (thrown != null)
                {
                    NativeResults.Drop(ref result);
                    thrown.Throw();
                }
                if (status == RgenStatus.RGEN_CANCELED) token.ThrowIfCancellationRequested();
                error.Check(status);
            }
            return result;
        }

        /// <summary>May be called by two threads at once, at the end of the process.</summary>
        public void Dispose()
        {
            AppDomain.CurrentDomain.ProcessExit -= atExit;
            job.Dispose();
            if (Interlocked.Exchange(ref isReleased, 1) == 0) Release();
        }

        private JobHandle Start(RequestHandle request, IntPtr context)
        {
            using (ErrorRecord error = new ErrorRecord())
            {
                JobHandle started =
                    RgenNative.rgenh_startReport(generator, request, End, context, error);
                if (started.IsInvalid) throw error.ToException();
                return started;
            }
        }

        private void Release()
        {
            translations.EndJob();
            generator.DangerousRelease();
        }

        /// <summary>Runs on the thread of the job, as its translator did.</summary>
        private static void AtEnd(IntPtr job, IntPtr context)
        {
            GCHandle handle = GCHandle.FromIntPtr(context);
            var ended = (TaskCompletionSource<ExceptionDispatchInfo>)handle.Target;
            handle.Free();
            ended.TrySetResult(Translation.TakeThrown());
        }
    }
}
