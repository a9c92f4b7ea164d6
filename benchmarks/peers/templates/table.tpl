{{! SPDX-License-Identifier: MIT }}<html>
<head>
<meta charset="UTF-8">
<title>Report title</title>
</head>
<body>
<h1>All measurements</h1>
<table>
<tr>
<th>Name</th>
<th>Value</th>
</tr>
{{#ROW}}<tr>
<td>{{NAME:h}}</td>
<td>{{VALUE:h}}</td>
</tr>
{{/ROW}}</table>
<p>Rows: {{COUNT}}</p>
</body>
</html>
