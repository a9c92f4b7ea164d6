// Tells what the C# sources declare of the C interface, in the lines of layout_test.py.
//
// SPDX-License-Identifier: MIT
using System;
using System.Globalization;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using StrataRepgenlib;

internal static class CSharpLayout
{
    private const BindingFlags All = BindingFlags.Static | BindingFlags.Instance |
                                     BindingFlags.Public | BindingFlags.NonPublic |
                                     BindingFlags.DeclaredOnly;

    private static void Main()
    {
        foreach (Type type in typeof(RgenStatus).Assembly.GetTypes())
        {
            bool isNative = type.Name.StartsWith("Rgen", StringComparison.Ordinal);
            if (isNative && type.IsValueType) TellRecord(type);
            if (type == typeof(RgenStatus) || type == typeof(RgenNative)) TellMembers(type);
        }
    }

    private static void Tell(string what, object number)
    {
        Console.WriteLine(what + "=" + Convert.ToString(number, CultureInfo.InvariantCulture));
    }

    private static void TellRecord(Type type)
    {
        Tell("sizeof(" + type.Name + ")", Marshal.SizeOf(type));
        foreach (FieldInfo field in type.GetFields(All))
        {
            Tell("offsetof(" + type.Name + ", " + field.Name + ")",
                 Marshal.OffsetOf(type, field.Name).ToInt64());
        }
    }

    private static void TellMembers(Type type)
    {
        foreach (FieldInfo field in type.GetFields(All).Where(field => field.IsLiteral))
        {
            bool isNumber = field.FieldType != typeof(string) && !field.FieldType.IsEnum;
            if (isNumber) Tell(field.Name, field.GetRawConstantValue());
        }
        foreach (MethodInfo method in type.GetMethods(All))
        {
            bool isNative = (method.Attributes & MethodAttributes.PinvokeImpl) != 0;
            if (isNative) Tell("parameters(" + method.Name + ")", method.GetParameters().Length);
        }
    }
}
