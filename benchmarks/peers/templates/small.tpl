{{! SPDX-License-Identifier: MIT }}<html>
<head>
<meta charset="UTF-8">
<title>Report title</title>
</head>
<body>
<h1>Measurement report</h1>
<p>{{Company:h}}, {{Department:h}}, {{Room:h}}</p>
<table>
<tr>
<th>Name</th>
<th>Value</th>
</tr>
<tr>
<td>Sample</td>
<td>{{Sample:h}}</td>
</tr>
<tr>
<td>Operator</td>
<td>{{Operator:h}}</td>
</tr>
<tr>
<td>Method</td>
<td>{{Method:h}}</td>
</tr>
<tr>
<td>Series</td>
<td>{{Series:h}}</td>
</tr>
<tr>
<td>Instrument</td>
<td>{{Instrument:h}}</td>
</tr>
<tr>
<td>Range</td>
<td>{{Range:h}}</td>
</tr>
<tr>
<td>Temperature</td>
<td>{{Temperature:h}}</td>
</tr>
<tr>
<td>Humidity</td>
<td>{{Humidity:h}}</td>
</tr>
<tr>
<td>Duration</td>
<td>{{Duration:h}}</td>
</tr>
<tr>
<td>Remark</td>
<td>{{Remark:h}}</td>
</tr>
</table>
{{#HAS_REMARK}}<p>There is a remark.</p>
{{/HAS_REMARK}}</body>
</html>
