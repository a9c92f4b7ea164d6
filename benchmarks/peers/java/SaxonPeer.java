// The peer "Saxon-HE". The input document is built for each report as Saxon's own tree, without
// parsing. cpp/peer_program.h describes the command line and the output.
//
// SPDX-License-Identifier: MIT
import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import javax.xml.stream.XMLStreamException;
import javax.xml.stream.XMLStreamWriter;
import javax.xml.transform.stream.StreamSource;
import net.sf.saxon.s9api.BuildingStreamWriter;
import net.sf.saxon.s9api.Processor;
import net.sf.saxon.s9api.SaxonApiException;
import net.sf.saxon.s9api.XdmNode;
import net.sf.saxon.s9api.XsltCompiler;
import net.sf.saxon.s9api.XsltExecutable;
import net.sf.saxon.s9api.XsltTransformer;

public final class SaxonPeer {
    private static final int FEWEST_REPORTS = 3;

    private record Value(String name, Object content) {}

    private record Measured(int reports, double seconds) {}

    private final Processor processor = new Processor(false);
    private final XsltCompiler compiler = processor.newXsltCompiler();
    private final List<Value> values;
    private final File template;
    private final File output;
    private final XsltExecutable kept;

    private SaxonPeer(Map<String, String> options) throws IOException, SaxonApiException {
        values = readValues(Path.of(options.get("values")));
        template = new File(options.get("template"));
        output = new File(options.get("output"));
        kept = options.get("way").equals("once") ? compileTemplate() : null;
    }

    private XsltExecutable compileTemplate() throws SaxonApiException {
        return compiler.compile(new StreamSource(template));
    }

    private XdmNode buildDocument() throws SaxonApiException, XMLStreamException {
        BuildingStreamWriter builder = processor.newDocumentBuilder().newBuildingStreamWriter();
        XMLStreamWriter writer = builder;
        writer.writeStartDocument();
        writer.writeStartElement("data");
        writer.writeStartElement("properties");
        for (Value value : values) {
            writer.writeStartElement("property");
            writer.writeAttribute("name", value.name());
            writer.writeCharacters(value.content().toString());
            writer.writeEndElement();
        }
        writer.writeEndElement();
        writer.writeEndElement();
        writer.writeEndDocument();
        return builder.getDocumentNode();
    }

    private void report() throws IOException, SaxonApiException, XMLStreamException {
        Files.deleteIfExists(output.toPath());
        XsltTransformer transformer = (kept != null ? kept : compileTemplate()).load();
        transformer.setInitialContextNode(buildDocument());
        transformer.setDestination(processor.newSerializer(output));
        transformer.transform();
    }

    /** Makes reports until both the count and the time are reached. */
    private Measured makeReports(int fewest, double seconds)
            throws IOException, SaxonApiException, XMLStreamException {
        long start = System.nanoTime();
        int reports = 0;
        double passed = 0;
        while (reports < fewest || passed < seconds) {
            report();
            ++reports;
            passed = (System.nanoTime() - start) / 1e9;
        }
        return new Measured(reports, passed);
    }

    private static List<Value> readValues(Path path) throws IOException {
        List<Value> values = new ArrayList<>();
        for (String line : Files.readAllLines(path, StandardCharsets.UTF_8)) {
            String[] parts = line.split("\t", 3);
            boolean isNumber = parts[1].equals("int64");
            values.add(new Value(parts[0], isNumber ? Long.valueOf(parts[2]) : parts[2]));
        }
        return values;
    }

    private static long peakKib() throws IOException {
        for (String line : Files.readAllLines(Path.of("/proc/self/status"))) {
            if (line.startsWith("VmHWM:")) return Long.parseLong(line.replaceAll("\\D", ""));
        }
        return 0;
    }

    private static Map<String, String> parseOptions(String[] arguments) {
        Map<String, String> options =
                new HashMap<>(Map.of("reports", "0", "warm-up", "0", "seconds", "0"));
        for (String argument : arguments) {
            int end = argument.indexOf('=');
            options.put(argument.substring(2, end), argument.substring(end + 1));
        }
        return options;
    }

    public static void main(String[] arguments) throws Exception {
        Map<String, String> options = parseOptions(arguments);
        SaxonPeer peer = new SaxonPeer(options);
        int reports = Integer.parseInt(options.get("reports"));
        Measured measured;
        if (reports > 0) {
            measured = peer.makeReports(reports, 0);
        } else {
            peer.makeReports(1, Double.parseDouble(options.get("warm-up")));
            measured = peer.makeReports(FEWEST_REPORTS, Double.parseDouble(options.get("seconds")));
        }
        System.out.printf(Locale.ROOT, "{\"reports\": %d, \"seconds\": %.9f, \"peak_kib\": %d}%n",
                measured.reports(), measured.seconds(), peakKib());
    }
}
