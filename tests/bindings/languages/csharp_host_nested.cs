// The cases of the host in C# about objects and lists as values.
//
// SPDX-License-Identifier: MIT
using System;
using System.Collections.Generic;
using System.Linq;
using StrataRepgenlib;

internal static partial class CSharpHost
{
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
