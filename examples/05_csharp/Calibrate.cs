// Calibrates a shoot from C#: Calibrate.exe TRACKER_DATA.csv LOG_FOLDER [RESULT.json]
//
// The chart has 9x6 inner corners and squares of 30 mm, the sensor 36 x 20.25 mm. With --layout it prints the
// layout of the structs, which a test compares with the header.
//
// Put trackedcam_c.dll into the folder of the program (Unity: Assets/Plugins/x86_64), libtrackedcam_c.so where
// the system searches. Pass strings as UTF-8 with a terminating zero; returned pointers belong to the handle.

using System;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

/// The functions and structs of trackedcam_c.h that a host needs, under their own names.
static class Native {
  const string Library = "trackedcam_c";

  public const int Ok = 0;

  [StructLayout(LayoutKind.Sequential)]
  public struct trackedcam_pose {
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)] public double[] position;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 4)] public double[] quaternion_wxyz;
  }

  [StructLayout(LayoutKind.Sequential)]
  public struct trackedcam_settings {
    public uint struct_size;
    public int board_columns;
    public int board_rows;
    public int expected_records;
    public double sensor_width_mm;
    public double sensor_height_mm;
    public double square_m;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)] public double[] chart_rotation_deg;
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 3)] public double[] chart_translation_m;
    public int mounting_is_stated;
    public int mounting_axes;
    public int tracker_axes;
    public int tracker_unit;
    public int invert_tracker_quaternions;
    public int refine_mounting;
    public int quaternion_order;
    public int at_count;
    public IntPtr working_folder;
    public IntPtr log_folder;
    public double good_enough_mm;
    public double good_enough_deg;
    public double scale_uncertainty_percent;
    public IntPtr exclude;
    public IntPtr at_m;
  }

  [StructLayout(LayoutKind.Sequential)]
  public struct trackedcam_export_options {
    public uint struct_size;
    public int even_if_wrong;
    public int nodal_offset;
    public int reserved;
    public double overscan;
    public IntPtr parent_axes;
    public IntPtr preview_file;
  }

  [StructLayout(LayoutKind.Sequential)]
  public struct trackedcam_progress {
    [MarshalAs(UnmanagedType.ByValArray, SizeConst = 64)] public byte[] stage;
    public int photographs_done;
    public int photographs_in_all;
  }

  [StructLayout(LayoutKind.Sequential)]
  public struct trackedcam_lens {
    public double image_width_px, image_height_px, fx_px, fy_px, cx_px, cy_px, k1, k2, p1, p2, k3,
        horizontal_fov_deg, vertical_fov_deg, focal_length_mm;
  }

  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern IntPtr trackedcam_c_version();
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern IntPtr trackedcam_last_error();
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_shoot_create(out IntPtr shoot);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_shoot_open(byte[] data_file, out IntPtr shoot);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_shoot_add(IntPtr shoot, double time_s, byte[] photograph,
                                                ref trackedcam_pose camera, ref trackedcam_pose chart);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_shoot_free(IntPtr shoot);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_settings_init(out trackedcam_settings settings, UIntPtr struct_size);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_start(IntPtr shoot, ref trackedcam_settings settings, out IntPtr run);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_run_poll(IntPtr run, out int is_done, out trackedcam_progress progress,
                                               UIntPtr progress_size);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_run_report(IntPtr run, out IntPtr report);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_run_free(IntPtr run);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_level(IntPtr report, out int level);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_lens(IntPtr report, out trackedcam_lens lens, UIntPtr lens_size);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_transform_cam_tc(IntPtr report, [Out] double[] transform_cam_tc);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_text(IntPtr report, byte[] pointer, out IntPtr text);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_export(IntPtr report, byte[] format, byte[] parent_axes,
                                                    out IntPtr json);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_export_options_init(out trackedcam_export_options options,
                                                          UIntPtr struct_size);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_export_file(IntPtr report, byte[] format,
                                                         ref trackedcam_export_options options, byte[] file);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_save(IntPtr report, byte[] json_file, byte[] page_file);
  [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
  public static extern int trackedcam_report_free(IntPtr report);

  public static byte[] Utf8(string text) {
    return text == null ? null : Encoding.UTF8.GetBytes(text + '\0');
  }

  public static string Text(IntPtr utf8) {
    int length = 0;
    while (Marshal.ReadByte(utf8, length) != 0) {
      ++length;
    }
    var bytes = new byte[length];
    Marshal.Copy(utf8, bytes, 0, length);
    return Encoding.UTF8.GetString(bytes);
  }

  public static UIntPtr SizeOf<T>() {
    return (UIntPtr)Marshal.SizeOf(typeof(T));
  }

  /// Throws for an error status.
  public static void Check(int status) {
    if (status != Ok) {
      throw new InvalidOperationException(Text(trackedcam_last_error()));
    }
  }
}

static class Program {
  static int Main(string[] arguments) {
    if (arguments.Length == 1 && arguments[0] == "--layout") {
      PrintLayout(typeof(Native.trackedcam_pose), typeof(Native.trackedcam_settings),
                  typeof(Native.trackedcam_export_options), typeof(Native.trackedcam_progress),
                  typeof(Native.trackedcam_lens));
      return 0;
    }
    if (arguments.Length != 2 && arguments.Length != 3) {
      Console.Error.WriteLine("usage: Calibrate.exe TRACKER_DATA.csv LOG_FOLDER [RESULT.json]");
      return 2;
    }
    try {
      Calibrate(arguments[0], arguments[1], arguments.Length == 3 ? arguments[2] : null);
      return 0;
    } catch (InvalidOperationException error) {
      Console.Error.WriteLine(error.Message);
      return 1;
    }
  }

  static void Calibrate(string data, string logFolder, string result) {
    IntPtr shoot = IntPtr.Zero, run = IntPtr.Zero, report = IntPtr.Zero;
    byte[] folder = Native.Utf8(logFolder);
    GCHandle pinned = GCHandle.Alloc(folder, GCHandleType.Pinned);
    try {
      Native.trackedcam_settings settings;
      Native.Check(Native.trackedcam_settings_init(out settings, Native.SizeOf<Native.trackedcam_settings>()));
      settings.sensor_width_mm = 36;
      settings.sensor_height_mm = 20.25;
      settings.board_columns = 9;
      settings.board_rows = 6;
      settings.square_m = 0.03;
      settings.log_folder = pinned.AddrOfPinnedObject();
      Native.Check(Native.trackedcam_shoot_open(Native.Utf8(data), out shoot));
      Native.Check(Native.trackedcam_start(shoot, ref settings, out run));

      // Like a game loop, once a frame.
      int isDone = 0;
      while (isDone == 0) {
        Native.trackedcam_progress progress;
        Native.Check(Native.trackedcam_run_poll(run, out isDone, out progress,
                                                Native.SizeOf<Native.trackedcam_progress>()));
        Thread.Sleep(16);
      }
      Native.Check(Native.trackedcam_run_report(run, out report));

      IntPtr message;
      Native.Check(Native.trackedcam_report_text(report, Native.Utf8("/verdict/message"), out message));
      Console.WriteLine(Native.Text(message));
      Native.trackedcam_lens lens;
      Native.Check(Native.trackedcam_report_lens(report, out lens, Native.SizeOf<Native.trackedcam_lens>()));
      var transform = new double[16];
      Native.Check(Native.trackedcam_report_transform_cam_tc(report, transform));
      Console.WriteLine("{0:F1} mm, camera tracker at {1:F4} {2:F4} {3:F4} m", lens.focal_length_mm, transform[3],
                        transform[7], transform[11]);
      if (result != null) {
        Native.Check(Native.trackedcam_report_save(report, Native.Utf8(result), null));
      }
    } finally {
      Native.trackedcam_report_free(report);
      Native.trackedcam_run_free(run);
      Native.trackedcam_shoot_free(shoot);
      pinned.Free();
    }
  }

  static void PrintLayout(params Type[] structs) {
    foreach (Type type in structs) {
      Console.WriteLine("{0} {1}", type.Name, Marshal.SizeOf(type));
      foreach (var field in type.GetFields()) {
        Console.WriteLine("{0}.{1} {2}", type.Name, field.Name, Marshal.OffsetOf(type, field.Name));
      }
    }
  }
}
